// SPDX-License-Identifier: Apache-2.0
#include "bench/machine_measures.h"

#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "bench/machine_files.h"
#include "bench/measured_run.h"
#include "host/replay/root.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

const std::vector<std::string> kFunctionClasses = {"QZMSG_PCIDevice", "QZMSG_PCIBridge"};
const std::vector<std::string> kPlaceClasses = {"VTQ_PCIFunction", "VTQ_PCIFunctionInSlot"};
const std::vector<std::string> kDetailClasses = {"VTQ_PCIFunction", "VTQ_PCIFunctionDetails",
                                                 "VTQ_PCIFunctionInSlot"};

Command ListInstances(const std::string& program, const std::vector<std::string>& classes) {
  Command command = {program, "instances", "--format", "json"};
  command.insert(command.end(), classes.begin(), classes.end());
  return command;
}

// A directory in memory, removed by the destructor.
class MemoryDirectory {
 public:
  MemoryDirectory() : path_(fs::path("/dev/shm") / ("pciinfo-bench-" + std::to_string(getpid()))) {}
  MemoryDirectory(const MemoryDirectory&) = delete;
  MemoryDirectory& operator=(const MemoryDirectory&) = delete;
  ~MemoryDirectory() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }

  const fs::path& Get() const { return path_; }

 private:
  fs::path path_;
};

// In a separate process, because the memory of this one would count for the programs that it
// starts.
void WriteInProcess(unsigned functions, const fs::path& directory) {
  const pid_t process = fork();
  if (process == 0) {
    try {
      WriteMachine(functions, directory);
      _exit(0);
    } catch (const std::exception&) {
      _exit(1);
    }
  }
  int status = 0;
  if (process < 0 || waitpid(process, &status, 0) < 0 || status != 0) {
    throw std::runtime_error("the machine cannot be written to " + directory.string());
  }
}

// In a capture, functions are plain directories; hwinfo reads only symbolic links, as in the
// kernel's /sys.
void LinkFunctions() {
  const fs::path links = "/sys/bus/pci/devices";
  std::vector<fs::path> directories(fs::directory_iterator(links), {});
  for (const fs::path& directory : directories) {
    const std::string name = directory.filename();
    const fs::path bus = "pci" + name.substr(0, name.size() - 5);  // without device and function
    fs::create_directories("/sys/devices" / bus);
    fs::rename(directory, "/sys/devices" / bus / name);
    fs::create_symlink("../../../devices" / bus / name, directory);
  }
}

void BecomeMachine(unsigned functions) {
  const MemoryDirectory directory;
  WriteInProcess(functions, directory.Get());
  pciinfo::ServeRoot(directory.Get(), {.commands = pciinfo::CommandSource::kLiveTools});
  LinkFunctions();
}

class Comparison {
 public:
  explicit Comparison(const Programs& programs) : programs_(programs) {}

  void CompareLists(unsigned rounds);
  void CompareListings(unsigned rounds);
  void CompareTopology(unsigned rounds);
  void CompareViews(unsigned rounds);
  void CompareSlowTools();
  void CountInstructions();

  Measures& Get() { return measures_; }

 private:
  Command Program(const std::vector<std::string>& classes) const {
    return ListInstances(programs_.pciinfo, classes);
  }
  void Add(const std::string& name, double value) { measures_[name].push_back(value); }
  Taken Run(const std::string& name, const Command& command);

  const Programs& programs_;
  Measures measures_;
};

Taken Comparison::Run(const std::string& name, const Command& command) {
  const Taken taken = Measure(command);
  Add(name + " wall", taken.wallSeconds);
  Add(name + " cpu", taken.cpuSeconds);
  Add(name + " peak", static_cast<double>(taken.peakBytes));
  Add(name + " output", static_cast<double>(taken.outputBytes));
  return taken;
}

void Comparison::CompareLists(unsigned rounds) {
  Measure({"lspci"});  // loads files and libraries into the page cache
  Measure(Program(kFunctionClasses));
  for (unsigned round = 0; round < rounds; ++round) {
    const Taken lspci = Run("lspci", {"lspci"});
    const Taken list = Run("list", Program(kFunctionClasses));
    Add("list/lspci wall", list.wallSeconds / lspci.wallSeconds);
  }
  const LspciCounter counter(programs_.lspciWrapper);
  // In one process: what a worker starts may write nowhere, and the wrapper writes down its time.
  Command alone = Program(kFunctionClasses);
  alone.emplace_back("--in-process");
  for (unsigned round = 0; round < rounds; ++round) {
    const Taken list = LspciCounter::Measure(alone);
    const double own = list.cpuSeconds - list.lspciSeconds;
    Add("own cpu", own);
    Add("own/lspci cpu", own / list.lspciSeconds);
  }
}

void Comparison::CompareListings(unsigned rounds) {
  for (unsigned round = 0; round < rounds; ++round) {
    const Taken list = Run("lspci again", {"lspci"});
    const Taken hex = Run("lspci -xxxx", {"lspci", "-xxxx"});
    const Taken verbose = Run("lspci -vvv", {"lspci", "-vvv"});
    const double tools = list.wallSeconds + hex.wallSeconds + verbose.wallSeconds;
    Add("three listings wall", tools);
    Add("all/listings wall", Run("all", Program({})).wallSeconds / tools);
    const Taken raw = Run("raw", Program({"QZMSG_PCIRawData"}));
    const auto text = static_cast<double>(hex.outputBytes + verbose.outputBytes);
    Add("raw text", text);
    const double memory = static_cast<double>(raw.peakBytes) - 32 * 1024 * 1024;
    Add("raw memory above", memory);
    Add("raw memory/text", memory / text);
  }
}

void Comparison::CompareTopology(unsigned rounds) {
  for (unsigned round = 0; round < rounds; ++round) {
    const double listing = Run("lspci -D", {"lspci", "-D"}).wallSeconds;
    Add("places/lspci wall", Run("places", Program(kPlaceClasses)).wallSeconds / listing);
    const double verbose = Run("lspci -vvv again", {"lspci", "-vvv"}).wallSeconds;
    Add("details/lspci wall", Run("details", Program(kDetailClasses)).wallSeconds / verbose);
  }
}

void Comparison::CompareViews(unsigned rounds) {
  const std::vector<std::pair<std::string, Command>> views = {
      {"overview", {programs_.pciinfo}},
      {"devices", {programs_.pciinfo, "devices"}},
      {"slots", {programs_.pciinfo, "slots"}}};
  for (unsigned round = 0; round < rounds; ++round) {
    const double plain = Run("lspci beside views", {"lspci"}).wallSeconds;
    const double withDomains = Run("lspci -D beside views", {"lspci", "-D"}).wallSeconds;
    for (const auto& [name, command] : views) {
      const double view = Run(name, command).wallSeconds;
      Add(name + "/lspci wall", view / plain);
      Add(name + "/lspci -D wall", view / withDomains);
    }
  }
}

void Comparison::CompareSlowTools() {
  const double list = Median(measures_.at("list wall"));
  const auto run = [this, list](const std::string& name, Command command) {
    // Their time grows with the square of the number of functions; on large machines, a minute is
    // enough.
    command.insert(command.begin(), {"timeout", "60"});
    const Taken taken = Run(name, command);
    if (WIFEXITED(taken.status) && WEXITSTATUS(taken.status) == 124) Add(name + " stopped", 1);
    Add(name + "/list wall", taken.wallSeconds / list);
  };
  run("lshw -json", {"lshw", "-json"});
  run("hwinfo --pci", {"hwinfo", "--pci"});
}

void Comparison::CountInstructions() {
  const fs::path counts = fs::current_path() / "counts";
  Command command = {"valgrind", "--tool=callgrind", "--callgrind-out-file=" + counts.string()};
  const Command program = Program(kFunctionClasses);
  command.insert(command.end(), program.begin(), program.end());
  command.emplace_back("--in-process");
  Measure(command);
  std::ifstream file(counts);
  for (std::string word; file >> word;) {
    double instructions = 0;
    if (word == "totals:" && file >> instructions) return Add("instructions", instructions);
  }
  throw std::runtime_error("valgrind counted nothing; does " + programs_.pciinfo + " run?");
}

}  // namespace

Measures MeasureMachine(const Plan& plan, const Programs& programs) {
  BecomeMachine(plan.functions);
  Comparison comparison(programs);
  comparison.CompareLists(plan.rounds);
  comparison.CompareListings(plan.listingRounds);
  comparison.CompareTopology(plan.rounds);
  comparison.CompareViews(plan.rounds);
  if (plan.withSlowTools) comparison.CompareSlowTools();
  if (plan.withInstructions) comparison.CountInstructions();
  return std::move(comparison.Get());
}

Measures MeasurePair(unsigned functions, unsigned rounds, const std::string& program,
                     const std::string& other) {
  BecomeMachine(functions);
  const Command commands[] = {ListInstances(program, kFunctionClasses),
                              ListInstances(other, kFunctionClasses)};
  for (const Command& command : commands) Measure(command);  // the files are in memory from here on
  Measures measures;
  for (unsigned round = 0; round < rounds; ++round) {
    const double wall = Measure(commands[0]).wallSeconds;
    const double otherWall = Measure(commands[1]).wallSeconds;
    measures["program wall"].push_back(wall);
    measures["other wall"].push_back(otherWall);
    measures["other/program wall"].push_back(otherWall / wall);
  }
  return measures;
}

}  // namespace bench
