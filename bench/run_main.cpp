// SPDX-License-Identifier: Apache-2.0

// bench_run: measures pciinfo and other tools, and writes the results to docs/.

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "bench/machine_measures.h"
#include "bench/plot.h"
#include "bench/report.h"

namespace fs = std::filesystem;

namespace {

using namespace bench;

struct Settings {
  std::vector<unsigned> sizes = {64, 512, 4096, 16384};
  unsigned rounds = 11;
  unsigned slowToolsUpTo = 4096;
  bool withInstructions = true;
  std::string docs;     ///< empty: to standard output only
  std::string against;  ///< another build of pciinfo to compare with; empty: none
};

// Fewer rounds if each takes long, more rounds if a short disturbance would change the result.
unsigned RoundsFor(unsigned functions, unsigned rounds) {
  if (functions > 4096) return (rounds + 2) / 3;
  return rounds * std::clamp(4096 / std::max(functions, 1U), 1U, 16U);
}

Plan PlanFor(unsigned functions, const Settings& settings) {
  Plan plan;
  plan.functions = functions;
  plan.rounds = RoundsFor(functions, settings.rounds);
  plan.listingRounds = functions > 4096 ? 1 : (settings.rounds + 2) / 3;
  plan.withSlowTools = functions <= settings.slowToolsUpTo;
  plan.withInstructions = settings.withInstructions;
  return plan;
}

// A separate process, because a process can move into only one machine.
Measures MeasureInProcess(unsigned functions, const std::function<Measures()>& measure) {
  const std::string file = fmt::format("/dev/shm/pciinfo-bench-results-{}", getpid());
  // Open before the process changes its view of the file system.
  const int results = open(file.c_str(), O_CREAT | O_RDWR | O_TRUNC | O_CLOEXEC, 0600);
  fs::remove(file);
  const pid_t process = fork();
  if (process == 0) {
    try {
      const std::string text = nlohmann::json(measure()).dump();
      _exit(write(results, text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 1);
    } catch (const std::exception& failure) {
      std::cerr << "bench_run: " << functions << " functions: " << failure.what() << "\n";
      _exit(1);
    }
  }
  int status = 0;
  if (process < 0 || waitpid(process, &status, 0) < 0 || status != 0) {
    throw std::runtime_error(fmt::format("{} functions could not be measured", functions));
  }
  std::string text(static_cast<std::size_t>(lseek(results, 0, SEEK_END)), '\0');
  const ssize_t count = pread(results, text.data(), text.size(), 0);
  close(results);
  return nlohmann::json::parse(text.substr(0, static_cast<std::size_t>(count))).get<Measures>();
}

std::string ProcessorName() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "an unknown processor";
}

std::string VersionOf(const std::string& command) {
  FILE* const pipe = popen((command + " --version 2>/dev/null").c_str(), "r");
  char line[128] = "";
  if (pipe == nullptr) return "";
  [[maybe_unused]] const char* read = fgets(line, sizeof line, pipe);
  pclose(pipe);
  return std::string(line, std::string_view(line).find_last_not_of('\n') + 1);
}

// Returns the version number of a kernel release, without the suffix of the distribution.
std::string Version(const std::string& release) { return release.substr(0, release.find('-')); }

std::string Circumstances() {
  utsname system{};
  uname(&system);
  std::ifstream load("/proc/loadavg");
  double busy = 0;
  load >> busy;
  const std::time_t now = std::time(nullptr);
  std::ostringstream date;
  date << std::put_time(std::gmtime(&now), "%Y-%m-%d");
  return fmt::format(
      "Measured on {}: {} x {}, Linux {}, {}, files in memory. Load when it began: {:.1f}.",
      date.str(), std::thread::hardware_concurrency(), ProcessorName(), Version(system.release),
      VersionOf("lspci"), busy);
}

void WriteDown(const Results& results, const std::string& circumstances, const std::string& docs) {
  const std::string tables = MakeTables(results, circumstances);
  std::cout << tables;
  if (docs.empty()) return;
  ReplaceBetweenMarkers(docs + "/performance.md", tables);
  std::ofstream(docs + "/performance.svg") << MakePlot(results);
}

// Two builds of the program on each machine, in turn: whether what one of them leaves out costs
// time.
void CompareBuilds(const Settings& settings) {
  constexpr unsigned kRounds = 200;
  for (const unsigned size : settings.sizes) {
    const Measures measures = MeasureInProcess(
        size, [&] { return MeasurePair(size, kRounds, BENCH_PCIINFO, settings.against); });
    std::vector<double> ratios = measures.at("other/program wall");
    std::sort(ratios.begin(), ratios.end());
    std::cout << fmt::format(
        "{} functions: the other build takes {:.3f} times as long (median of {} rounds; the middle "
        "half of them: {:.3f} to {:.3f}; of the least times: {:.3f})\n",
        size, Median(ratios), kRounds, ratios[kRounds / 4], ratios[kRounds * 3 / 4],
        Least(measures.at("other wall")) / Least(measures.at("program wall")));
  }
}

CLI::Option* AddOptions(CLI::App& app, Settings& settings) {
  app.add_option("--sizes", settings.sizes, "Numbers of PCI functions")
      ->delimiter(',')
      ->capture_default_str();
  app.add_option("--rounds", settings.rounds,
                 "Number of measurements of the device list of 4,096 functions")
      ->check(CLI::Range(1, 1000))
      ->capture_default_str();
  app.add_option(
         "--slow-tools-up-to", settings.slowToolsUpTo,
         "Run lshw and hwinfo (once, at most a minute) on machines with up to this many functions")
      ->capture_default_str();
  app.add_flag("!--no-instructions", settings.withInstructions,
               "Do not count instructions (valgrind)");
  app.add_option("--against", settings.against,
                 "Only compare with this other build of pciinfo, 200 times each in turn")
      ->check(CLI::ExistingFile);
  return app.add_option("--docs", settings.docs,
                        "Directory in which performance.md and performance.svg are rewritten");
}

}  // namespace

int main(int argc, char** argv) {
  Settings settings;
  CLI::App app("Measures pciinfo, lspci, lshw and hwinfo on generated machines.", "bench/run");
  AddOptions(app, settings);
  CLI11_PARSE(app, argc, argv);
  try {
    if (!settings.against.empty()) {
      CompareBuilds(settings);
      return 0;
    }
    const std::string circumstances = Circumstances();
    const Programs programs{BENCH_PCIINFO, BENCH_LSPCI};
    Results results;
    for (const unsigned size : settings.sizes) {
      std::cerr << "Measuring " << size << " functions ...\n";
      results[size] =
          MeasureInProcess(size, [&] { return MeasureMachine(PlanFor(size, settings), programs); });
    }
    WriteDown(results, circumstances, settings.docs);
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << "bench_run: " << failure.what() << "\n";
    return 1;
  }
}
