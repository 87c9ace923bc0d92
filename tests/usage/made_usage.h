// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "usage/usage.h"

namespace pciinfo {

/// Definitions with every kind of option, and texts that must be escaped in every shell.
inline Usage MadeUsage() {
  CLI::App app("Waters plants. And more.", "water");
  std::vector<std::string> texts;
  std::string text;
  bool flag = false;
  app.set_version_flag("--version", "1");
  app.add_option("--can,-c", texts, "Use this can: [big] 'one' \\ only")
      ->type_name("FILE")
      ->allow_extra_args(false);
  app.add_option("--hidden", text, "Nobody sees this")->group("");
  app.footer("Mind the roots.\n\nExit status:\n  0  wet\n  1  dry\n");
  CLI::App* plants = app.add_subcommand("plants", "Name plants");
  plants->add_option("--colour", text, "Colour of the bloom")
      ->type_name("COLOUR")
      ->check(CLI::IsMember(std::vector<std::string>{"red", "blue"}))
      ->default_str("red");
  plants->add_flag("--dry", flag, ".Only dry ones");
  plants->add_option("--ignore", text, "Leave out")->type_name("CODE");
  plants->add_option("CLASS", texts, "Kinds of plants");
  plants->footer("All cans serve.\n\nOwn words.\n");
  CLI::App* log = app.add_subcommand("log", "Write down");
  log->add_option("FILE", text, "Where to")->required();
  log->add_option("HOW", text, "In which form")
      ->check(CLI::IsMember(std::vector<std::string>{"long", "short"}));
  log->footer("All cans serve.\n");
  CLI::App* pot = app.add_subcommand("pot", "Look at one");
  pot->add_option("NAME", text, "Which")->required();
  pot->add_option("--sort", text, "Order")->type_name("up|down");
  pot->add_option("--parts", texts, "What to see")
      ->type_name("PART,...")
      ->check(CLI::IsMember(std::vector<std::string>{"leaf", "root"}));
  pot->add_option("--only", texts, "Some")->type_name("KEY=VALUE,...");
  app.add_option("--tone", text, "Sound")->check(CLI::IsMember(std::vector<std::string>{"high"}));
  pot->add_option("--tone", text, "Sound")
      ->check(CLI::IsMember(std::vector<std::string>{"high", "low"}));
  pot->add_option("--can", texts, "How many cans");
  pot->footer("All cans serve.\n");
  Usage usage = UsageOf(app);
  usage.classes = {"Fern", "Moss"};
  usage.codes = {"too-dry", "too-wet"};
  usage.keys = {"size=", "place="};
  usage.listings = {"list --all"};
  return usage;
}

}  // namespace pciinfo
