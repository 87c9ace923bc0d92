#include "host/commands.h"

#include <unistd.h>

#include <filesystem>
#include <functional>
#include <optional>

#include "host/capture.h"
#include "host/classes_view.h"
#include "host/instance_writer.h"
#include "host/inventory_view.h"
#include "host/output.h"
#include "host/pci_schema.h"
#include "host/plugin_location.h"
#include "host/query_order.h"
#include "host/root.h"
#include "host/session.h"
#include "host/slots_view.h"

namespace pciinfo {
namespace {

/// A command as what it needs collected and how it prints that.
struct Job {
  std::vector<std::string> collect;
  std::function<void(const Session& session, Output& output)> print;
  /// The inventory shows nothing of slots: that they are unknown is no news for its reader.
  bool showsSlots = true;
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
  QueryPlan plan = PlanQuery(PciSchema(), options.classes);
  return {plan.collect,
          [print = plan.print, format = options.format](const Session& session, Output& output) {
            WriteInstances(session.GetRepository(), print, *MakeInstanceWriter(format, output));
          }};
}

Job ClassesJob(const Options&) {
  return {{}, [](const Session& session, Output& output) {
            WriteClasses(output, session.GetPlugins(), session.GetRepository());
          }};
}

Job SlotsJob(const Options& options) {
  return {ClassesFor({"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"}),
          [write = options.format == "json" ? &WriteSlotsJson : &WriteSlotsTable](
              const Session& session, Output& output) {
            write(output, ReadSlots(session.GetRepository()));
          }};
}

Job MakeJob(const Options& options) {
  switch (options.command) {
    case Command::kInstances:
      return InstancesJob(options);
    case Command::kClasses:
      return ClassesJob(options);
    case Command::kSlots:
      return SlotsJob(options);
    case Command::kCapture:  // collects nothing
    case Command::kInventory:
      break;
  }
  return InventoryJob(options);
}

void LoadPlugins(Session& session, const std::vector<std::string>& files) {
  if (files.empty()) session.Load(FirstExisting(PluginPlaces(ProgramFolder())));
  for (const std::string& file : files) session.Load(file);
}

ExitStatus Print(const Job& job, const Session& session) {
  try {
    Output output(STDOUT_FILENO);
    job.print(session, output);
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

ExitStatus Show(const Options& options) {
  const Job job = MakeJob(options);
  TroubleReport report(std::filesystem::exists("/proc/bus/pci"), job.showsSlots,
                       !options.root.empty());
  Session session(report, {options.logFile, options.logLevel});
  LoadPlugins(session, options.plugins);
  session.Collect(job.collect);
  const ExitStatus printed = Print(job, session);
  Tell(report, session.Close());
  if (printed == kAllCollected && report.HasTroubles()) return kFailed;
  return printed;
}

void MakeAbsolute(std::string& file) {
  if (!file.empty() && file != "-") file = std::filesystem::absolute(file);
}

/// Moves to the captured machine; the files that the user named stay the same ones.
Manifest MoveToRoot(Options& options) {
  for (std::string& plugin : options.plugins) MakeAbsolute(plugin);
  MakeAbsolute(options.logFile);
  MakeAbsolute(options.captureFile);
  return ServeRoot(options.root,
                   options.liveCommands ? CommandSource::kLiveTools : CommandSource::kRecorded);
}

}  // namespace

ExitStatus RunCommand(Options options) {
  std::optional<Manifest> origin;
  if (!options.root.empty()) origin = MoveToRoot(options);
  if (options.command == Command::kCapture) {
    return Capture({options.captureFile, options.redact, origin});
  }
  return Show(options);
}

}  // namespace pciinfo
