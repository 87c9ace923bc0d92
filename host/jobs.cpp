#include "host/jobs.h"

#include "host/bridge_buses.h"
#include "host/bus_tree.h"
#include "host/classes_view.h"
#include "host/devices_view.h"
#include "host/instance_writer.h"
#include "host/machine_identity.h"
#include "host/overview.h"
#include "host/pci_schema.h"
#include "host/query_order.h"
#include "host/show_view.h"
#include "host/slots_view.h"
#include "host/tree_view.h"

namespace pciinfo {
namespace {

std::vector<std::string> ClassesFor(const std::vector<std::string>& asked) {
  return PlanQuery(PciSchema(), asked).collect;
}

/// The job of a view of what the filter keeps. Terms about slots need these known.
Job ViewJob(const Options& options, std::vector<std::string> classes,
            const std::function<void(const vtq::Namespace& kept, Output& output)>& write) {
  if (options.filter.IsEmpty()) {
    return {ClassesFor(classes), [write](const Session& session, Output& output) {
              write(session.GetRepository(), output);
            }};
  }
  if (options.filter.NeedsSlots()) classes.emplace_back("QZMSG_DeviceInSlot");
  return {ClassesFor(classes),
          [write, filter = options.filter](const Session& session, Output& output) {
            write(*KeptOf(session.GetRepository(), filter), output);
          }};
}

Job OverviewJob(const Options& options, const Terminal& terminal) {
  const auto print = [terminal, filter = options.filter](const Session& session, Output& output) {
    const auto kept = KeptOf(session.GetRepository(), filter);
    WriteOverview(output, MakeOverview(*kept, ReadIdentity(), session.GetReport().GetLines()),
                  terminal);
  };
  return {ClassesFor({"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"}), print, true,
          terminal.width.has_value()};
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
  std::vector<std::string> print = PlanQuery(PciSchema(), options.classes).print;
  std::vector<std::string> collect = print;
  // Whether a slot is kept depends on what sits in it.
  if (!options.filter.IsEmpty()) collect.emplace_back("QZMSG_DeviceInSlot");
  return ViewJob(options, collect,
                 [print, format = options.format](const vtq::Namespace& kept, Output& output) {
                   WriteInstances(kept, print, *MakeInstanceWriter(format, output));
                 });
}

Job ClassesJob(const Options&) {
  return {{}, [](const Session& session, Output& output) {
            WriteClasses(output, session.GetPlugins(), session.GetRepository());
          }};
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

/// The tree of what is kept, with the bridges on the way there.
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
  return {ClassesFor({"QZMSG_DeviceInSlot"}), print};
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
    case Command::kCapture:  // these two collect nothing
    case Command::kSchema:
    case Command::kOverview:
      break;
  }
  return OverviewJob(options, terminal);
}

}  // namespace pciinfo
