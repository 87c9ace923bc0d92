#include "host/cli/commands.h"

#include <fmt/format.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <functional>
#include <optional>

#include "host/base/errors.h"
#include "host/capture/capture.h"
#include "host/cli/diff_command.h"
#include "host/cli/jobs.h"
#include "host/collect/session.h"
#include "host/console/output.h"
#include "host/console/text.h"
#include "host/process/library_location.h"
#include "host/process/pager.h"
#include "host/process/process_end.h"
#include "host/process/progress_line.h"
#include "host/process/stages.h"
#include "host/replay/root.h"
#include "host/schema/class_file.h"
#include "host/schema/schema_writer.h"
#include "host/views/show_target.h"

namespace pciinfo {
namespace {

constexpr const char* kPluginFile = "libpciinfo.pi.so";

void LoadPlugins(Session& session, const std::vector<std::string>& files) {
  if (files.empty()) {
    session.Load(FirstExisting(LibraryPlaces(ProgramFolder(), kPluginFile),
                               "install the plug-in or name one with --plugin"));
  }
  for (const std::string& file : files) session.Load(file);
}

ExitStatus Print(const std::function<void(Output& output)>& print) {
  try {
    Output output(STDOUT_FILENO);
    print(output);
    output.Flush();
    return kAllCollected;
  } catch (const ClosedPipe&) {
    return kPipeClosed;
  } catch (const OutputError& error) {
    WriteMessage(error.what());
    return kFailed;
  } catch (const NotFound& error) {
    WriteMessage(error.what());
    return kFailed;
  } catch (const UsageError& error) {
    WriteMessage(error.what());
    return kWrongUsage;
  }
}

/// Writes the violations as warnings and the lines of the report, except the first `seen`, which
/// the user has seen.
void Tell(const TroubleReport& report, std::size_t seen,
          const std::vector<std::string>& violations) {
  for (const std::string& violation : violations) WriteMessage("warning: " + violation);
  const std::vector<std::string> lines = report.GetLines();
  for (std::size_t i = seen; i < lines.size(); ++i) WriteMessage(lines[i]);
}

void CollectInStages(Session& session, TroubleReport& report, const Job& job, Stages& stages,
                     ProgressLine& progress) {
  const std::size_t count = job.collect.size();
  for (std::size_t i = 0; i < count; ++i) {
    const std::string& className = job.collect[i];
    progress.Tell(fmt::format("collecting {} ({} of {})", className, i + 1, count));
    if (const auto failure = stages.Begin(i + 1 == count)) {
      report.BeginClass(className);
      report.AddFailure("the plug-in " + *failure);
      report.EndClass();
    } else {
      session.Collect({className});
      stages.EndStage();
    }
  }
  progress.End();
}

ExitStatus StatusOf(const Job& job, const TroubleReport& report, ExitStatus printed) {
  if (printed != kAllCollected) return printed;
  if (report.HasTroubles()) return kFailed;
  return job.answer ? job.answer() : kAllCollected;
}

/// Where a run writes, besides its result.
struct Channels {
  LogSettings log;
  ProgressLine& progress;
  const LateMessages& messages;
};

LogSettings OpenLog(const Options& options) {
  if (options.logFile.empty()) return {nullptr, options.logLevel};
  return {vtq::MakeFileSink(options.logFile), options.logLevel};
}

ExitStatus Show(const Options& options, const Job& job, Stages& stages, const Channels& channels) {
  TroubleReport report(std::filesystem::exists("/proc/bus/pci"), job.showsSlots,
                       !options.root.empty());
  Session session(report, channels.log, job.classes);
  LoadPlugins(session, options.plugins);
  stages.EndStage();
  CollectInStages(session, report, job, stages, channels.progress);
  channels.messages.Hold();
  const ExitStatus printed = Print([&](Output& output) { job.print(session, output); });
  const std::size_t seen = job.showsTroubles ? report.GetLines().size() : 0;
  stages.BeginEnding();
  Tell(report, seen, session.EndPlugins());
  return stages.End(StatusOf(job, report, printed));
}

void MakeAbsolute(std::string& file) {
  if (!file.empty() && file != "-") file = std::filesystem::absolute(file);
}

/// With --root the working directory changes before these files are opened.
void MakeFilesAbsolute(Options& options) {
  for (std::string& plugin : options.plugins) MakeAbsolute(plugin);
  MakeAbsolute(options.logFile);
  MakeAbsolute(options.captureFile);
}

Manifest MoveToRoot(const Options& options) {
  return ServeRoot(options.root,
                   options.liveCommands ? CommandSource::kLiveTools : CommandSource::kRecorded);
}

Limits LimitsOf(const Options& options) {
  return {std::chrono::milliseconds(std::llround(options.timeout * 1000)),
          BytesOfLimit(options.memoryLimit)};
}

ExitStatus RunOn(const Terminal& terminal, Options options, const LateMessages& messages) {
  if (options.command == Command::kSchema) {
    return Print([&options](Output& output) {
      WriteSchema(output, options.schemaFormat, DeclaredClasses(options.classFiles));
    });
  }
  if (options.command == Command::kDiff) return RunDiff(options, LimitsOf(options), &RunCommand);
  const Job job = MakeJob(options, terminal);  // reads class files, so before --root
  MakeFilesAbsolute(options);
  ProgressLine progress(!options.logLevel);
  std::optional<Manifest> origin;
  if (!options.root.empty()) {
    progress.Tell("reading the capture " + Printable(options.root));
    origin = MoveToRoot(options);
  }
  if (options.command == Command::kCapture) {
    progress.End();
    return RunInStages(LimitsOf(options), {"capturing", true}, [&](Stages&) {
      return Capture({options.captureFile, options.redact, origin});
    });
  }
  progress.Tell("loading the plug-ins");
  // Opened before the stages, so that a repeated stage appends to the same log.
  const Channels channels{OpenLog(options), progress, messages};
  const ExitStatus status =
      RunInStages(LimitsOf(options), {"loading the plug-ins"},
                  [&](Stages& stages) { return Show(options, job, stages, channels); });
  progress.End();
  return EndProcess(status);
}

}  // namespace

ExitStatus RunCommand(Options options) {
  const Terminal terminal = StandardTerminal(options.terminal);
  if (!terminal.pager || options.command == Command::kCapture) {
    return RunOn(terminal, std::move(options), LateMessages());
  }
  return RunWithPager(*terminal.pager, [&](const LateMessages& messages) {
    return RunOn(terminal, std::move(options), messages);
  });
}

}  // namespace pciinfo
