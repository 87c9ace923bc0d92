// SPDX-License-Identifier: Apache-2.0
#include "host/cli/store_command.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>

#include "host/base/errors.h"
#include "host/cli/limits.h"
#include "host/cli/line_reader.h"
#include "host/cli/memory_file.h"
#include "host/cli/report_command.h"
#include "host/console/output.h"
#include "host/process/guarded_run.h"
#include "host/record/machine_record.h"
#include "host/store/machine_store.h"
#include "host/store/target.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

/// No archive begins with a brace.
bool IsJsonFile(const std::string& path) {
  if (std::filesystem::is_directory(path)) return false;
  std::ifstream file(path);
  char first = ' ';
  file >> first;
  return first == '{';
}

bool IsBlank(const std::string& line) { return line.find_first_not_of(" \t\r") == line.npos; }

std::string SentenceOf(StoreResult result, std::size_t count) {
  const std::map<StoreResult, const char*> words{
      {StoreResult::kNew, "new"},
      {StoreResult::kChanged, "changed"},
      {StoreResult::kSame, "unchanged"},
      {StoreResult::kOlder, "left out because a later state is stored"}};
  return fmt::format("{} {}", count, words.at(result));
}

/// Returns "server1" for "captures/server1.tar.gz".
std::string NameOfCapture(const std::string& path) {
  const std::filesystem::path file(path);
  const std::string name = (file.has_filename() ? file : file.parent_path()).filename().string();
  return name.substr(0, name.find(".tar"));
}

/// Returns the machine line with this name if it does not say which machine it is about, as that of
/// a redacted capture.
std::string Named(const std::string& line, const std::string& name) {
  auto machine = nlohmann::ordered_json::parse(line);
  if (machine.contains("systemUUID") || machine.contains("machineID")) return line;
  if (!machine.value("system", std::string()).empty()) return line;
  machine["system"] = name;
  return machine.dump();
}

/// Stores machines one after the other and counts them.
class StoreRun final {
 public:
  StoreRun(const Options& options, const MachinePrinter& print)
      : options_(options), print_(print), settings_{options.storeTarget, options.redact} {
    OpenMachineStore(
        settings_);  // says what is wrong with the database before anything is collected
  }

  /// Stores what a file or directory tells, or standard input for "-".
  void StoreSource(const std::string& name) {
    if (name == "-") return StoreLines(STDIN_FILENO, "standard input");
    const RepeatableInput input(name, InputLimitsOf(options_));
    if (IsJsonFile(input.GetFile())) return StoreJsonFile(name, input.GetFile());
    Options machine = options_;
    machine.root = input.GetFile();
    StoreMachine(machine, name);
  }

  /// Collects a machine and stores it; `source` is its capture, or empty. Only then is the database
  /// opened, because the processes that collect inherit what is open.
  void StoreMachine(const Options& machine, const std::string& source) {
    const MemoryFile file;
    std::optional<MessageSubject> subject;
    if (!source.empty()) subject.emplace(source);
    const ExitStatus status = RunGuarded([&] { return print_(machine, file.Get()); });
    isComplete_ = isComplete_ && status == kAllCollected;
    const std::string line = file.Read();
    if (line.empty()) return;
    StoreText(*OpenMachineStore(settings_), Named(line, NameOfCapture(source)), "");
  }

  ExitStatus Finish() {
    std::vector<std::string> parts;
    for (const auto& [result, count] : counts_) parts.push_back(SentenceOf(result, count));
    if (parts.empty()) parts.emplace_back("none was stored");
    Output output(STDOUT_FILENO);
    output.Write(
        fmt::format("Machines in {}: {}\n", ShownTarget(settings_.target), fmt::join(parts, ", ")));
    output.Flush();
    return isComplete_ ? kAllCollected : kFailed;
  }

 private:
  void StoreJsonFile(const std::string& name, const std::string& path) {
    const vtq::FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen()) throw std::runtime_error(name + ": " + std::strerror(errno));
    StoreLines(file.Get(), name);
  }

  /// Stores each line of a file; or one document, whose first line is no JSON alone and whose
  /// second is no object either.
  void StoreLines(int descriptor, const std::string& source) {
    const MessageSubject subject(source);
    const std::unique_ptr<MachineStore> store = OpenMachineStore(settings_);
    LineReader lines(descriptor, source, options_.memoryLimit << 20U);
    std::string line;
    if (!lines.Next(line)) return Refuse("it is empty");
    std::string second;
    const bool hasSecond = lines.Next(second);
    if (hasSecond && !IsBlank(line) && !second.starts_with('{') && !nlohmann::json::accept(line)) {
      return StoreText(*store, line + "\n" + second + "\n" + lines.Rest(), "");
    }
    StoreLine(*store, line, 1);
    if (hasSecond) StoreLine(*store, second, 2);
    for (std::size_t number = 3; lines.Next(line); ++number) StoreLine(*store, line, number);
  }

  void StoreLine(MachineStore& store, const std::string& line, std::size_t number) {
    if (!IsBlank(line)) StoreText(store, line, fmt::format("line {}: ", number));
  }

  /// Stores what one text tells. A text that tells no machine keeps no other from being stored.
  void StoreText(MachineStore& store, const std::string& text, const std::string& place) {
    try {
      ++counts_[store.Store(ParseRecord(text))];
    } catch (const UsageError& error) {
      Refuse(place + error.what());
    } catch (const BadRecord& error) {
      Refuse(place + error.what());
    }
  }

  void Refuse(const std::string& why) {
    WriteMessage(why);
    isComplete_ = false;
  }

  const Options& options_;
  const MachinePrinter& print_;
  StoreSettings settings_;
  std::map<StoreResult, std::size_t> counts_;
  bool isComplete_ = true;
};

/// Only the first would get anything of it.
void CheckSources(const Options& options) {
  if (options.inProcess) {
    throw UsageError("store collects in a process of its own: leave out --in-process");
  }
  if (!options.storeSources.empty() && !options.root.empty()) {
    throw UsageError("--root and CAPTURE name two machines: leave out one");
  }
  const auto& sources = options.storeSources;
  if (std::count(sources.begin(), sources.end(), "-") > 1) {
    throw UsageError("standard input can be read once only: leave out a \"-\"");
  }
}

/// Says what was stored also when the database failed before the last machine.
ExitStatus StoreAll(StoreRun& run, const Options& machine,
                    const std::vector<std::string>& sources) {
  const ExitStatus status = RunGuarded([&] {
    if (sources.empty()) run.StoreMachine(machine, "");
    for (const std::string& source : sources) run.StoreSource(source);
    return kAllCollected;
  });
  const ExitStatus finished = run.Finish();
  return status == kAllCollected ? finished : status;
}

}  // namespace

ExitStatus RunStore(const Options& options, const MachinePrinter& print) {
  CheckTarget(options.storeTarget);
  CheckSources(options);
  const std::vector<std::string> sources = CapturesIn(options.storeSources);
  Options machine = options;
  machine.command = Command::kOverview;
  machine.format = "jsonl";
  StoreRun run(machine, print);
  return StoreAll(run, machine, sources);
}

}  // namespace pciinfo
