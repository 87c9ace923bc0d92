// SPDX-License-Identifier: Apache-2.0
#include "host/cli/commands.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <functional>
#include <optional>

#include "host/base/errors.h"
#include "host/base/utc_time.h"
#include "host/capture/capture.h"
#include "host/cli/diff_command.h"
#include "host/cli/fleet_command.h"
#include "host/cli/jobs.h"
#include "host/cli/limits.h"
#include "host/cli/report_command.h"
#include "host/cli/store_command.h"
#include "host/collect/foreign_domains.h"
#include "host/collect/session.h"
#include "host/console/output.h"
#include "host/console/repeatable_input.h"
#include "host/console/text.h"
#include "host/process/guarded_run.h"
#include "host/process/huge_pages.h"
#include "host/process/supervisor.h"
#include "host/replay/root.h"
#include "host/schema/schema_writer.h"

namespace pciinfo {
namespace {

/// Warns of plug-ins that are loaded and asked for nothing.
void TellIdlePlugins(const PluginOptions& options, const PluginSet& plugins) {
  if (!options.classFiles.empty()) return;  // every plug-in is asked for their classes
  for (const PluginFile& plugin : plugins.plugins) {
    if (!plugin.classes.empty()) continue;
    WriteMessage(
        fmt::format("warning: nothing is asked of the plug-in {}: its classes are not "
                    "declared (see --class-file)",
                    Printable(plugin.file)));
  }
}

ExitStatus Print(int descriptor, const std::function<void(Output& output)>& print) {
  return RunGuarded([&] {
    Output output(descriptor);
    print(output);
    output.Flush();
    return kAllCollected;
  });
}

/// Writes the violations as warnings and the lines of the report, except the first `seen`, which
/// the user has seen.
void Tell(const TroubleReport& report, std::size_t seen,
          const std::vector<std::string>& violations) {
  for (const std::string& violation : violations) WriteMessage("warning: " + violation);
  const std::vector<std::string> lines = report.GetLines();
  for (std::size_t i = seen; i < lines.size(); ++i) WriteMessage(lines[i]);
}

void CollectClasses(Session& session, TroubleReport& report, const Job& job, Worker& worker) {
  const std::size_t count = job.collect.size();
  for (std::size_t i = 0; i < count; ++i) {
    const std::string& className = job.collect[i];
    const bool isLast = i + 1 == count;
    const auto failure = worker.Begin(
        {fmt::format("collecting {} ({} of {})", className, i + 1, count), false, isLast});
    if (failure) {
      report.BeginClass(className);
      report.AddFailure("the plug-in " + *failure);
      report.EndClass();
    } else {
      session.Collect({className});
      worker.EndStep();
    }
  }
}

ExitStatus StatusOf(const Job& job, const TroubleReport& report, ExitStatus printed) {
  if (printed != kAllCollected) return printed;
  if (report.HasTroubles()) return job.troubled;
  return job.answer ? job.answer() : kAllCollected;
}

LogSettings OpenLog(const Options& options) {
  if (options.logFile.empty()) return {nullptr, options.logLevel};
  return {vtq::MakeFileSink(options.logFile), options.logLevel};
}

std::vector<std::string> FilesOf(const PluginSet& plugins) {
  std::vector<std::string> files;
  for (const PluginFile& plugin : plugins.plugins) files.push_back(plugin.file);
  return files;
}

/// A machine as a worker comes to see it.
class Machine final {
 public:
  /// `options` must outlive it. An archive from a pipe is kept for later workers.
  explicit Machine(const Options& options) : options_(options) {
    if (!options.root.empty()) capture_.emplace(options.root, InputLimitsOf(options));
  }

  /// Moves this process to the machine: to that of the capture, if the options name one, whose
  /// manifest it answers. From then on it has the rights only that `needs` names.
  std::optional<Manifest> Enter(Worker& worker, Needs needs) const {
    needs.liveMachine = options_.root.empty();
    if (!needs.liveMachine) return EnterCapture(worker, needs);
    worker.Confine(needs);
    return std::nullopt;
  }

 private:
  Manifest EnterCapture(Worker& worker, const Needs& needs) const {
    worker.Begin({"reading the capture " + Printable(options_.root), true, false});
    const auto commands =
        options_.liveCommands ? CommandSource::kLiveTools : CommandSource::kRecorded;
    const auto confine = [&](const std::vector<std::string>& writable) {
      Needs all = needs;
      all.writable.insert(all.writable.end(), writable.begin(), writable.end());
      worker.Confine(all);
    };
    Manifest manifest = Serve({commands, needs.files, confine, CaptureLimitsOf(options_)});
    worker.EndStep();
    return manifest;
  }

  Manifest Serve(const Replay& replay) const {
    try {
      return ServeRoot(capture_->GetFile(), replay);
    } catch (const BadCapture& bad) {
      throw BadCapture("cannot use the capture " + options_.root + ": " + bad.what());
    }
  }

  const Options& options_;
  std::optional<RepeatableInput> capture_;
};

/// Whether the plug-in serves a class that is collected. One whose classes are not known may.
bool IsNeeded(const PluginFile& plugin, const Job& job) {
  return job.loadsAll || plugin.classes.empty() ||
         std::find_first_of(plugin.classes.begin(), plugin.classes.end(), job.collect.begin(),
                            job.collect.end()) != plugin.classes.end();
}

/// Whether a manifest of this program's tells that the machine had no SMBIOS tables to read. One
/// that was made by hand does not say when.
bool ShowedNoTables(const std::optional<Manifest>& manifest) {
  if (!manifest || manifest->capturedAt.empty()) return false;
  return std::none_of(manifest->unread.begin(), manifest->unread.end(), [](const UnreadPart& part) {
    return part.path.starts_with("sys/firmware/dmi/tables");
  });
}

/// When the machine was as it is shown: now, or when it was captured. A capture made by hand need
/// not say when.
std::string TimeOf(const std::optional<Manifest>& manifest) {
  if (!manifest) return UtcText(std::time(nullptr));
  return IsUtcText(manifest->capturedAt) ? manifest->capturedAt : "";
}

/// The work of a view: collects what the job needs and prints it to a file that is open.
[[noreturn]] void Show(const Options& options, const PluginSet& plugins, const Job& job,
                       const LogSettings& log, const std::optional<Manifest>& manifest,
                       int descriptor, Worker& worker) {
  TroubleReport report({.hasPciBus = std::filesystem::exists("/proc/bus/pci"),
                        .serviceFailure = "",
                        .isCapture = !options.root.empty(),
                        .domainOf = MakeDomainLookup(),
                        .showedNoTables = ShowedNoTables(manifest)});
  Session session(report, log, plugins.declared.classes);
  session.SetTime(TimeOf(manifest));
  worker.Begin({"loading the plug-ins", true, false});
  for (const PluginFile& plugin : plugins.plugins) {
    if (IsNeeded(plugin, job)) session.Load(plugin);
  }
  if (!options.root.empty()) worker.GiveUpReading();
  worker.EndStep();
  CollectClasses(session, report, job, worker);
  worker.BeginOutput();
  TellIdlePlugins(options.plugins, plugins);
  const ExitStatus printed = Print(descriptor, [&](Output& output) { job.print(session, output); });
  const std::size_t seen = job.showsTroubles ? report.GetLines().size() : 0;
  worker.BeginEnding();
  Tell(report, seen, session.EndPlugins());
  const std::optional<std::string> logFailure = session.GetLogFailure();
  if (logFailure) WriteMessage(*logFailure);
  const ExitStatus status = StatusOf(job, report, printed);
  worker.End(logFailure && status == kAllCollected ? kFailed : status);
}

void MakeAbsolute(std::string& file) {
  if (!file.empty() && file != "-") file = std::filesystem::absolute(file);
}

/// With --root the working directory changes before these files are opened.
void MakeFilesAbsolute(Options& options) {
  MakeAbsolute(options.logFile);
  MakeAbsolute(options.captureFile);
}

/// Does work for these options: in a worker, or, with --in-process, in this process.
class Runner final {
 public:
  explicit Runner(const Options& options) : options_(options) {
    if (!options.inProcess) signals_.emplace();
  }

  ExitStatus Run(const Work& work, const std::optional<std::string>& pager = std::nullopt) {
    if (signals_)
      return Supervise({LimitsOf(options_), pager, !options_.logLevel}, *signals_, work);
    Worker alone;
    return work(alone);
  }

 private:
  const Options& options_;
  std::optional<HeldSignals> signals_;  ///< from before anything is made that a signal could leave
};

ExitStatus RunViewTo(int descriptor, Options options, const Terminal& terminal, Runner& runner) {
  MakeFilesAbsolute(options);
  const LogSettings log = OpenLog(options);  // one file for all workers
  const Machine machine(options);
  // The worker reads the class files. If the supervisor did, both processes would have its memory
  // after the fork, and the kernel would copy each page of it that one of them writes to.
  return runner.Run(
      [&](Worker& worker) -> ExitStatus {
        UseHugePages();
        const PluginSet plugins = FindPlugins(options.plugins);  // reads files of the user's
        const Job job = MakeJob(options, plugins, terminal);
        const std::optional<Manifest> manifest = machine.Enter(worker, {.files = FilesOf(plugins)});
        Show(options, plugins, job, log, manifest, descriptor, worker);
      },
      terminal.pager);
}

ExitStatus RunView(const Options& options, const Terminal& terminal) {
  Runner runner(options);
  return RunViewTo(STDOUT_FILENO, options, terminal, runner);
}

ExitStatus RunCapture(Options options) {
  MakeFilesAbsolute(options);
  const Machine machine(options);
  Runner runner(options);
  CaptureTarget target(options.captureFile);
  const ExitStatus status = runner.Run([&](Worker& worker) {
    target.GetWriter();  // while the worker has the rights to reach the place
    const std::optional<Manifest> origin = machine.Enter(
        worker,
        {.writable = target.GetDirectories(), .keepsUser = !target.GetDirectories().empty()});
    worker.Begin({"capturing", true, true});
    return Capture({options.redact, origin}, target, worker);
  });
  // Not in the worker, which may no longer write to where the user can.
  if (status == kAllCollected || status == kPartsUnread) target.Commit();
  return status == kPartsUnread ? kFailed : status;
}

ExitStatus RunSchema(const Options& options, const Terminal& terminal) {
  return Runner(options).Run(
      [&](Worker& worker) {
        const PluginSet plugins = FindPlugins(options.plugins);
        worker.BeginOutput();
        return Print(STDOUT_FILENO, [&](Output& output) {
          WriteSchema(output, options.schemaFormat, plugins.declared.classes);
        });
      },
      terminal.pager);
}

ExitStatus RunDiffInWorkers(const Options& options, const Terminal& terminal) {
  if (options.inProcess) {
    throw UsageError("diff collects each side in a process of its own: leave out --in-process");
  }
  return RunDiff(
      options, [&](const Work& work) { return Runner(options).Run(work, terminal.pager); },
      [](const Options& side) { return RunView(side, Terminal()); });
}

ExitStatus RunReportInWorkers(const Options& options) {
  const auto view = [](const Options& machine, const std::function<int()>& openFile) {
    Runner runner(machine);  // holds signals back before there is a file
    return RunViewTo(openFile(), machine, Terminal(), runner);
  };
  return RunReport(
      options, {view, [](const Options& sides) { return RunDiffInWorkers(sides, Terminal()); }});
}

ExitStatus RunFleetInWorker(const Options& options, const Terminal& terminal) {
  return RunFleet(options, terminal,
                  [&](const Work& work) { return Runner(options).Run(work, terminal.pager); });
}

ExitStatus RunStoreOfWorkers(const Options& options) {
  return RunStore(options, [](const Options& machine, int descriptor) {
    Runner runner(machine);
    return RunViewTo(descriptor, machine, Terminal(), runner);
  });
}

}  // namespace

ExitStatus RunCommand(const Options& options) {
  const Terminal terminal = StandardTerminal(options.terminal);
  switch (options.command) {
    case Command::kSchema:
      return RunSchema(options, terminal);
    case Command::kDiff:
      return RunDiffInWorkers(options, terminal);
    case Command::kCapture:
      return RunCapture(options);
    case Command::kReport:
      return RunReportInWorkers(options);
    case Command::kFleet:
      return RunFleetInWorker(options, terminal);
    case Command::kStore:
      return RunStoreOfWorkers(options);
    default:
      return RunView(options, terminal);
  }
}

}  // namespace pciinfo
