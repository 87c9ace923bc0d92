// SPDX-License-Identifier: Apache-2.0
#include "host/cli/fleet_options.h"

#include <CLI/CLI.hpp>

#include "host/fleet/fleet_filter.h"

namespace pciinfo {
namespace {

constexpr const char* kFleetFooter =
    "DATABASE is what \"pciinfo store\" writes: a file of SQLite, or postgresql://HOST/NAME. It is "
    "only\n"
    "read, and not made if it does not exist.\n"
    "\n"
    "Exit status:\n"
    "  0    the question was answered; if nothing matches, standard error says so\n"
    "  1    the database cannot be read, or refuses the query\n"
    "  2    the command line is wrong\n"
    "\n"
    "The options of \"pciinfo --help\" can be given here as well.\n";

void AddFleetFilter(CLI::App& fleet, FleetRequest& request) {
  fleet
      .add_option("--filter", request.filters,
                  "Show only what matches every term; repeat the option to match any of several "
                  "filters")
      ->type_name("KEY=VALUE,...")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false);
}

}  // namespace

void AddFleetOptions(CLI::App& fleet, std::string& database, FleetRequest& request) {
  fleet.add_option("DATABASE", database, "FILE of SQLite, or postgresql://...")
      ->type_name("FILE")
      ->required();
  fleet.add_option("QUESTION", request.question, "What to ask, see below")
      ->type_name("QUESTION")
      ->required()
      ->check(CLI::IsMember(FleetQuestions()));
  fleet.add_option("TEXT", request.text,
                   "Of find, firmware and sql: what to look for, or the query");
  AddFleetFilter(fleet, request);
  fleet.add_flag("--free", request.onlyFree, "With slots: only those known to be empty");
  fleet.add_option("--width", request.width, "With slots: only those with at least so many lanes")
      ->type_name("x1|x2|x4|x8|x16");
  fleet
      .add_option("--since", request.since,
                  "With changes: only those seen since then: 12h, 7d, 2w, 2024-05-06 or "
                  "2024-05-06T07:08:09Z")
      ->type_name("TIME");
  fleet.footer(FleetQuestionHelp() + "\n" + FleetFilterHelp() + "\n" + kFleetFooter);
}

}  // namespace pciinfo
