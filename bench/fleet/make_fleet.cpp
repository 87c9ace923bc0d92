// SPDX-License-Identifier: Apache-2.0

// bench_fleet MACHINES: writes the machine lines of a fleet that does not exist to standard output.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "bench/fleet/fleet_machine.h"

namespace {

struct Options {
  std::size_t machines = 0;
  std::size_t first = 0;
  bench::FleetPlan plan;
};

void AddOptions(CLI::App& app, Options& options) {
  app.add_option("MACHINES", options.machines, "how many machines")->required();
  app.add_option("--first", options.first, "number of the first machine")->capture_default_str();
  app.add_option("--functions", options.plan.functions, "PCI functions of each machine")
      ->capture_default_str();
  app.add_option("--seed", options.plan.seed, "another number makes another fleet")
      ->capture_default_str();
  app.add_option("--week", options.plan.week, "the same fleet so many weeks later")
      ->capture_default_str();
  app.add_option("--changed", options.plan.changedPerMille,
                 "how many of 1000 machines change in a week")
      ->capture_default_str();
}

bool WriteLine(const std::string& line) {
  return std::fwrite(line.data(), 1, line.size(), stdout) == line.size() &&
         std::fputc('\n', stdout) != EOF;
}

int WriteFleet(const Options& options) {
  for (std::size_t i = 0; i < options.machines; ++i) {
    const bench::MachineState state = StateOf(options.plan, options.first + i);
    if (!WriteLine(MachineLine(CollectedOf(options.plan, state)))) break;
  }
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return 0;
  std::perror("bench_fleet");
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Writes machine lines of a made-up fleet, one for each machine.", "bench_fleet");
  Options options;
  AddOptions(app, options);
  CLI11_PARSE(app, argc, argv);
  try {
    return WriteFleet(options);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "bench_fleet: %s\n", failure.what());
    return 1;
  }
}
