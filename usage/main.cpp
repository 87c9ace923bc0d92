// SPDX-License-Identifier: Apache-2.0

// Writes the manual page and the completions of the shells into a directory:
//   write_usage DIRECTORY VERSION DATE SECTIONS-FILE CLASS-FILE...

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "host/check/machine_checks.h"
#include "host/cli/options.h"
#include "host/fleet/fleet_filter.h"
#include "host/model/filter.h"
#include "host/schema/class_file.h"
#include "usage/writers.h"

namespace {

using namespace pciinfo;

std::string ContentOf(const std::string& name) {
  std::ifstream file(name);
  std::ostringstream content;
  content << file.rdbuf();
  if (!file) throw std::runtime_error(name + ": cannot be read");
  return content.str();
}

void WriteFile(const std::filesystem::path& name, const std::string& text) {
  std::ofstream file(name);
  file << text << std::flush;
  if (!file) throw std::runtime_error(name.string() + ": cannot be written");
}

/// The keys of `--filter` as they are completed.
std::vector<std::string> WithEqualsSigns(std::vector<std::string> keys) {
  for (std::string& key : keys) key += "=";
  return keys;
}

/// The answers of fleet have other keys than the functions of a machine.
void SetFleetKeys(Usage& usage) {
  for (UsageCommand& command : usage.commands) {
    if (command.name != "fleet") continue;
    for (UsageOption& option : command.options) {
      if (option.kind == ValueKind::kKeys) option.keys = WithEqualsSigns(FleetFilterKeys());
    }
  }
}

Usage UsageOfProgram(const std::vector<std::string>& classFiles) {
  Declarations declared;
  std::vector<std::string> classes;
  for (const std::string& file : classFiles) {
    for (const std::string& name : ReadClassFile(file, declared)) classes.push_back(name);
  }
  Options options;
  Usage usage = UsageOf(*BuildApp(options));
  usage.classes = classes;
  usage.codes = FindingCodes();
  usage.keys = WithEqualsSigns(FilterKeys());
  SetFleetKeys(usage);
  usage.listings = {"devices --columns address", "slots --columns slot --format csv"};
  return usage;
}

void WriteAll(const std::filesystem::path& directory, const Usage& usage,
              const ManualText& manual) {
  WriteFile(directory / "pciinfo.1", ManualPage(usage, manual));
  WriteFile(directory / "pciinfo", BashCompletion(usage));
  WriteFile(directory / "pciinfo.fish", FishCompletion(usage));
  WriteFile(directory / "_pciinfo", ZshCompletion(usage));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc < 6)
      throw std::runtime_error("needs DIRECTORY VERSION DATE SECTIONS-FILE CLASS-FILE...");
    WriteAll(argv[1], UsageOfProgram({argv + 5, argv + argc}),
             {argv[2], argv[3], ContentOf(argv[4])});
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "write_usage: %s\n", error.what());
    return 1;
  }
}
