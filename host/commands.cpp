#include "host/commands.h"

#include <unistd.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "host/capture.h"
#include "host/check_reader.h"
#include "host/check_view.h"
#include "host/class_file.h"
#include "host/classes_view.h"
#include "host/diff_command.h"
#include "host/instance_writer.h"
#include "host/inventory_view.h"
#include "host/library_location.h"
#include "host/output.h"
#include "host/pci_schema.h"
#include "host/query_order.h"
#include "host/root.h"
#include "host/schema_writer.h"
#include "host/session.h"
#include "host/slots_view.h"
#include "host/stages.h"

namespace pciinfo {
namespace {

constexpr const char* kPluginFile = "libpciinfo.pi.so";

/// A command as what it needs collected and how it prints that.
struct Job {
  std::vector<std::string> collect;
  std::function<void(const Session& session, Output& output)> print;
  /// The inventory shows nothing of slots: that they are unknown is no news for its reader.
  bool showsSlots = true;
  std::vector<vtq::ClassSchema> classes = PciSchema();
  /// What the program answers when all was collected and printed; none: kAllCollected.
  std::function<ExitStatus()> answer = nullptr;
};

std::vector<std::string> ClassesFor(const std::vector<std::string>& asked) {
  return PlanQuery(PciSchema(), asked).collect;
}

Job InventoryJob(const Options&) {
  return {ClassesFor({"QZMSG_PCIDevice", "QZMSG_PCIBridge"}),
          [](const Session& session, Output& output) {
            WriteInventory(output, session.GetRepository());
          },
          false};
}

Job InstancesJob(const Options& options) {
  std::vector<vtq::ClassSchema> classes = DeclaredClasses(options.classFiles);
  QueryPlan plan = PlanQuery(classes, options.classes);
  return {plan.collect,
          [print = plan.print, format = options.format](const Session& session, Output& output) {
            WriteInstances(session.GetRepository(), print, *MakeInstanceWriter(format, output));
          },
          true, std::move(classes)};
}

Job ClassesJob(const Options& options) {
  return {{},
          [](const Session& session, Output& output) {
            WriteClasses(output, session.GetPlugins(), session.GetRepository());
          },
          true,
          DeclaredClasses(options.classFiles)};
}

Job SlotsJob(const Options& options) {
  return {ClassesFor({"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"}),
          [write = options.format == "json" ? &WriteSlotsJson : &WriteSlotsTable](
              const Session& session, Output& output) {
            write(output, ReadSlots(session.GetRepository()));
          }};
}

Job CheckJob(const Options& options) {
  auto isDoubtful = std::make_shared<bool>(false);
  const auto write = options.format == "json" ? &WriteFindingsJson : &WriteFindings;
  return {ClassesFor({"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"}),
          [=, isCapture = !options.root.empty()](const Session& session, Output& output) {
            const auto findings = RunChecks(ReadCheckFacts(session.GetRepository(), isCapture));
            *isDoubtful = AreDoubtful(findings);
            write(output, findings);
          },
          true, PciSchema(), [=] { return *isDoubtful ? kFailed : kAllCollected; }};
}

Job MakeJob(const Options& options) {
  switch (options.command) {
    case Command::kInstances:
      return InstancesJob(options);
    case Command::kClasses:
      return ClassesJob(options);
    case Command::kSlots:
      return SlotsJob(options);
    case Command::kCheck:
      return CheckJob(options);
    case Command::kCapture:  // these collect nothing here
    case Command::kDiff:
    case Command::kSchema:
    case Command::kInventory:
      break;
  }
  return InventoryJob(options);
}

void LoadPlugins(Session& session, const std::vector<std::string>& files) {
  if (files.empty()) {
    session.Load(FirstExisting(LibraryPlaces(ProgramFolder(), kPluginFile),
                               "install the plug-in, or name one with --plugin"));
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
  }
}

void Tell(const TroubleReport& report, const std::vector<std::string>& violations) {
  for (const std::string& violation : violations) WriteMessage("warning: " + violation);
  for (const std::string& line : report.GetLines()) WriteMessage(line);
}

void CollectInStages(Session& session, TroubleReport& report, const Job& job, Stages& stages) {
  for (std::size_t i = 0; i < job.collect.size(); ++i) {
    const std::string& className = job.collect[i];
    if (const auto failure = stages.Begin(i + 1 == job.collect.size())) {
      report.BeginClass(className);
      report.AddFailure("the plug-in " + *failure);
      report.EndClass();
    } else {
      session.Collect({className});
      stages.EndStage();
    }
  }
}

ExitStatus StatusOf(const Job& job, const TroubleReport& report, ExitStatus printed) {
  if (printed != kAllCollected) return printed;
  if (report.HasTroubles()) return kFailed;
  return job.answer ? job.answer() : kAllCollected;
}

ExitStatus Show(const Options& options, const Job& job, Stages& stages) {
  TroubleReport report(std::filesystem::exists("/proc/bus/pci"), job.showsSlots,
                       !options.root.empty());
  Session session(report, {options.logFile, options.logLevel}, job.classes);
  LoadPlugins(session, options.plugins);
  stages.EndStage();
  CollectInStages(session, report, job, stages);
  const ExitStatus printed = Print([&](Output& output) { job.print(session, output); });
  stages.BeginEnding();
  Tell(report, session.EndPlugins());
  return stages.End(StatusOf(job, report, printed));
}

void MakeAbsolute(std::string& file) {
  if (!file.empty() && file != "-") file = std::filesystem::absolute(file);
}

/// What follows runs in another directory; the files that the user named stay the same ones.
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
  constexpr std::uint64_t kMebibyte = 1U << 20U;
  Limits limits{std::chrono::milliseconds(std::llround(options.timeout * 1000)), std::nullopt};
  if (options.memoryLimit > 0) limits.memory = options.memoryLimit * kMebibyte;
  return limits;
}

}  // namespace

ExitStatus RunCommand(Options options) {
  if (options.command == Command::kSchema) {
    return Print([&options](Output& output) {
      WriteSchema(output, options.schemaFormat, DeclaredClasses(options.classFiles));
    });
  }
  if (options.command == Command::kDiff) return RunDiff(options, LimitsOf(options), &RunCommand);
  const Job job = MakeJob(options);  // reads files of the machine that it runs on
  MakeFilesAbsolute(options);
  std::optional<Manifest> origin;
  if (!options.root.empty()) origin = MoveToRoot(options);
  if (options.command == Command::kCapture) {
    return RunInStages(LimitsOf(options), {"capturing", true}, [&](Stages&) {
      return Capture({options.captureFile, options.redact, origin});
    });
  }
  return RunInStages(LimitsOf(options), {"loading the plug-ins"},
                     [&](Stages& stages) { return Show(options, job, stages); });
}

}  // namespace pciinfo
