#include "host/cli/jobs.h"

#include <memory>
#include <utility>

#include "host/check/check_reader.h"
#include "host/check/check_view.h"
#include "host/collect/query_order.h"
#include "host/formats/instance_writer.h"
#include "host/model/bridge_buses.h"
#include "host/model/bus_tree.h"
#include "host/model/machine_identity.h"
#include "host/schema/class_file.h"
#include "host/schema/pci_schema.h"
#include "host/views/classes_view.h"
#include "host/views/devices_view.h"
#include "host/views/overview.h"
#include "host/views/show_view.h"
#include "host/views/slots_view.h"
#include "host/views/tree_view.h"

namespace pciinfo {
namespace {

std::vector<std::string> ClassesFor(const std::vector<std::string>& asked) {
  return PlanQuery(PciSchema(), asked).collect;
}

Job MakeView(std::vector<std::string> collect,
             std::function<void(const Session& session, Output& output)> print) {
  Job job;
  job.collect = std::move(collect);
  job.print = std::move(print);
  return job;
}

/// Makes the job of a view that shows what the filter keeps. A filter by slot needs the slot
/// classes too.
Job ViewJob(const Options& options, std::vector<std::string> classes,
            const std::function<void(const vtq::Namespace& kept, Output& output)>& write,
            std::vector<vtq::ClassSchema> declared = PciSchema()) {
  if (options.filter.NeedsSlots()) classes.emplace_back("QZMSG_DeviceInSlot");
  Job job = MakeView(PlanQuery(declared, classes).collect,
                     [write, filter = options.filter](const Session& session, Output& output) {
                       if (filter.IsEmpty()) return write(session.GetRepository(), output);
                       write(*KeptOf(session.GetRepository(), filter), output);
                     });
  job.classes = std::move(declared);
  return job;
}

Job OverviewJob(const Options& options, const Terminal& terminal) {
  const auto print = [terminal, filter = options.filter](const Session& session, Output& output) {
    const auto kept = KeptOf(session.GetRepository(), filter);
    WriteOverview(output, MakeOverview(*kept, ReadIdentity(), session.GetReport().GetLines()),
                  terminal);
  };
  Job job = MakeView(ClassesFor({"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"}), print);
  job.showsTroubles = terminal.width.has_value();
  return job;
}

Job DevicesJob(const Options& options, const Terminal& terminal) {
  const bool asJson = options.format == "json";
  Job job = ViewJob(options, {"QZMSG_PCIDevice", "QZMSG_PCIBridge"},
                    [asJson, terminal](const vtq::Namespace& kept, Output& output) {
                      if (asJson) return WriteDevicesJson(output, kept);
                      WriteDevicesTable(output, kept, terminal);
                    });
  job.showsSlots = options.filter.NeedsSlots();
  return job;
}

Job InstancesJob(const Options& options) {
  std::vector<vtq::ClassSchema> declared = DeclaredClasses(options.classFiles);
  std::vector<std::string> print = PlanQuery(declared, options.classes).print;
  std::vector<std::string> collect = print;
  // The filter keeps a slot if it keeps a function in it.
  if (!options.filter.IsEmpty()) collect.emplace_back("QZMSG_DeviceInSlot");
  return ViewJob(
      options, std::move(collect),
      [print, format = options.format](const vtq::Namespace& kept, Output& output) {
        WriteInstances(kept, print, *MakeInstanceWriter(format, output));
      },
      std::move(declared));
}

Job ClassesJob(const Options& options) {
  Job job = MakeView({}, [](const Session& session, Output& output) {
    WriteClasses(output, session.GetPlugins(), session.GetRepository());
  });
  job.classes = DeclaredClasses(options.classFiles);
  return job;
}

Job CheckJob(const Options& options) {
  auto isDoubtful = std::make_shared<bool>(false);
  const auto write = options.format == "json" ? &WriteFindingsJson : &WriteFindings;
  Job job = MakeView(
      ClassesFor({"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"}),
      [=, isCapture = !options.root.empty()](const Session& session, Output& output) {
        const auto findings = RunChecks(ReadCheckFacts(session.GetRepository(), isCapture));
        *isDoubtful = AreDoubtful(findings);
        write(output, findings);
      });
  job.answer = [isDoubtful] { return *isDoubtful ? kFailed : kAllCollected; };
  return job;
}

Job SlotsJob(const Options& options, const Terminal& terminal) {
  const bool asJson = options.format == "json";
  return ViewJob(options, {"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"},
                 [asJson, terminal](const vtq::Namespace& kept, Output& output) {
                   const SlotsModel model = ReadSlots(kept);
                   if (asJson) return WriteSlotsJson(output, model);
                   WriteSlotsTable(output, model, terminal);
                 });
}

/// Reads the tree of the functions that the filter keeps and of the bridges above them.
std::vector<RootBus> ReadTree(const vtq::Namespace& repository, const Filter& filter) {
  std::vector<RootBus> tree =
      MakeBusTree({ReadFunctions(repository), ReadSlots(repository).slots,
                   [](const PciAddress& address) { return ReadBridgeBuses(address); }});
  if (filter.IsEmpty()) return tree;
  const auto kept = KeptOf(repository, filter);
  Prune(tree, [&kept](const PciFunction& function) {
    return kept->Find("QZMSG_PCIDevice")->Find(function.path) != nullptr ||
           kept->Find("QZMSG_PCIBridge")->Find(function.path) != nullptr;
  });
  return tree;
}

Job TreeJob(const Options& options, const Terminal& terminal) {
  const auto print = [filter = options.filter, terminal, asJson = options.format == "json",
                      all = options.showAll](const Session& session, Output& output) {
    std::vector<RootBus> tree = ReadTree(session.GetRepository(), filter);
    if (asJson) return WriteTreeJson(output, tree);
    if (!all) FoldAlike(tree);
    WriteTree(output, tree, terminal);
  };
  return MakeView(ClassesFor({"QZMSG_DeviceInSlot"}), print);
}

Job ShowJob(const Options& options, const Terminal& terminal) {
  const auto print = [name = options.target, terminal, asJson = options.format == "json"](
                         const vtq::Namespace& kept, Output& output) {
    const Shown shown = FindNamed(kept, name);
    if (asJson) return WriteShownJson(output, shown);
    WriteShown(output, shown, terminal);
  };
  return ViewJob(options, ClassesToFind(options.target), print);
}

}  // namespace

Job MakeJob(const Options& options, const Terminal& terminal) {
  switch (options.command) {
    case Command::kDevices:
      return DevicesJob(options, terminal);
    case Command::kInstances:
      return InstancesJob(options);
    case Command::kClasses:
      return ClassesJob(options);
    case Command::kSlots:
      return SlotsJob(options, terminal);
    case Command::kTree:
      return TreeJob(options, terminal);
    case Command::kShow:
      return ShowJob(options, terminal);
    case Command::kCheck:
      return CheckJob(options);
    case Command::kDiff:  // not run as jobs
    case Command::kCapture:
    case Command::kSchema:
    case Command::kOverview:
      break;
  }
  return OverviewJob(options, terminal);
}

}  // namespace pciinfo
