// SPDX-License-Identifier: Apache-2.0
#include "host/cli/report_command.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "host/base/errors.h"
#include "host/capture/manifest.h"
#include "host/capture/new_entry.h"
#include "host/cli/jobs.h"
#include "host/cli/memory_file.h"
#include "host/console/output.h"
#include "host/process/guarded_run.h"
#include "host/process/signals.h"
#include "host/report/machines_page.h"

namespace pciinfo {
namespace {

namespace pages = std::filesystem;

/// The page to write: a new file, or standard output for "-".
class PageTarget final {
 public:
  explicit PageTarget(const std::string& name) {
    if (name.empty()) throw UsageError("the name of the page is empty");
    if (name == "-") return;
    const auto path = pages::absolute(name);  // with --root the working directory changes
    std::error_code ignored;
    const auto status = pages::status(path, ignored);
    if (pages::exists(status) && !pages::is_regular_file(status)) {
      throw UsageError(name + " exists and is not a regular file");
    }
    file_.emplace(path);
  }

  int GetDescriptor() const noexcept { return file_ ? file_->GetFile().Get() : STDOUT_FILENO; }

  void Commit() {
    if (file_) file_->Commit();
  }

 private:
  std::optional<NewFile> file_;
};

bool IsComplete(ExitStatus status) {
  return status == kAllCollected || status == kPageWithTroubles;
}

ExitStatus WriteOneMachine(const Options& options, const ReportRunners& runners) {
  std::optional<PageTarget> target;
  const ExitStatus status = runners.view(options, [&] {
    target.emplace(options.reportFile);
    return target->GetDescriptor();
  });
  if (IsComplete(status)) target->Commit();
  return status == kPageWithTroubles ? kFailed : status;
}

/// Runs a command whose messages say which capture they are about.
ExitStatus RunAbout(const std::string& capture, const std::function<ExitStatus()>& run) {
  const MessageSubject subject(capture);
  return RunGuarded(run);
}

class SeveralMachines final {
 public:
  SeveralMachines(const Options& options, const std::vector<std::string>& captures,
                  const ReportRunners& runners)
      : options_(options), captures_(captures), runners_(runners) {}

  ExitStatus Write() {
    for (const std::string& capture : captures_) AddMachine(capture);
    if (captures_.size() == 2) AddDifferences();
    const HeldSignals held;  // while there is a file that is not complete
    PageTarget target(options_.reportFile);
    Output output(target.GetDescriptor());
    WriteMachinesPage(output, machines_, differences_);
    output.Flush();
    target.Commit();
    return isComplete_ ? kAllCollected : kFailed;
  }

 private:
  void AddMachine(const std::string& capture) {
    Options machine = options_;
    machine.root = capture;
    machine.reportPart = machines_.size();
    const MemoryFile file;
    const ExitStatus status =
        RunAbout(capture, [&] { return runners_.view(machine, [&file] { return file.Get(); }); });
    isComplete_ = isComplete_ && status == kAllCollected;
    MachineOnPage& added = machines_.emplace_back();
    added.origin = pages::path(capture).filename().string();
    if (IsComplete(status)) added.part = file.Read();
  }

  void AddDifferences() {
    Options sides = options_;
    sides.diffBefore = captures_.front();
    sides.diffAfter = captures_.back();
    const MemoryFile file;
    const StandardOutputTo redirected(file);
    const ExitStatus status = RunGuarded([&] { return runners_.diff(sides); });
    constexpr ExitStatus kNotCompared = kWrongUsage;  // of `diff`
    isComplete_ = isComplete_ && status != kNotCompared;
    differences_ = file.Read();
  }

  const Options& options_;
  const std::vector<std::string>& captures_;
  const ReportRunners& runners_;
  std::vector<MachineOnPage> machines_;
  std::optional<std::string> differences_;
  bool isComplete_ = true;
};

bool IsDirectoryOfCaptures(const std::string& name) {
  return pages::is_directory(name) && !pages::exists(name + "/" + kManifestFile) &&
         !pages::exists(name + "/proc") && !pages::exists(name + "/sys");
}

std::vector<std::string> ArchivesIn(const std::string& directory) {
  std::vector<std::string> archives;
  for (const auto& entry : pages::directory_iterator(directory)) {
    const std::string file = entry.path().string();
    const bool isArchive = file.ends_with(".tar") || file.ends_with(".tar.gz") ||
                           file.ends_with(".tgz") || file.ends_with(".tar.zst");
    if (isArchive) archives.push_back(file);
  }
  std::sort(archives.begin(), archives.end());
  if (archives.empty()) throw UsageError("there are no captures in " + directory);
  return archives;
}

}  // namespace

std::vector<std::string> CapturesIn(const std::vector<std::string>& names) {
  std::vector<std::string> captures;
  for (const std::string& name : names) {
    const std::vector<std::string> named =
        IsDirectoryOfCaptures(name) ? ArchivesIn(name) : std::vector<std::string>{name};
    captures.insert(captures.end(), named.begin(), named.end());
  }
  return captures;
}

ExitStatus RunReport(const Options& options, const ReportRunners& runners) {
  if (options.inProcess) {
    throw UsageError("report collects in a process of its own: leave out --in-process");
  }
  if (!options.reportCaptures.empty() && !options.root.empty()) {
    throw UsageError("--root and CAPTURE name two machines: leave out one");
  }
  const std::vector<std::string> captures = CapturesIn(options.reportCaptures);
  if (captures.size() > 1) return SeveralMachines(options, captures, runners).Write();
  Options machine = options;
  if (!captures.empty()) machine.root = captures.front();
  return WriteOneMachine(machine, runners);
}

}  // namespace pciinfo
