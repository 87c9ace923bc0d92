// SPDX-License-Identifier: Apache-2.0
#include "host/cli/jobs.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "host/check/class_checks.h"
#include "host/check/class_facts_reader.h"
#include "host/check/finding_view.h"
#include "host/check/machine_checks.h"
#include "host/collect/query_order.h"
#include "host/console/safe_json.h"
#include "host/diff/identity_facts.h"
#include "host/diff/machine_state.h"
#include "host/formats/instance_writer.h"
#include "host/interchange/netbox.h"
#include "host/interchange/redfish.h"
#include "host/machine/function_details.h"
#include "host/machine/machine_filter.h"
#include "host/machine/machine_model.h"
#include "host/machine/port_tree.h"
#include "host/metrics/metrics.h"
#include "host/model/machine_identity.h"
#include "host/record/machine_json.h"
#include "host/record/machine_line.h"
#include "host/report/dot_writer.h"
#include "host/report/layout.h"
#include "host/report/machines_page.h"
#include "host/report/page.h"
#include "host/report/parts.h"
#include "host/report/svg_writer.h"
#include "host/views/classes_view.h"
#include "host/views/devices_view.h"
#include "host/views/overview.h"
#include "host/views/show_view.h"
#include "host/views/slots_view.h"
#include "host/views/tree_view.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

using Classes = std::vector<vtq::ClassSchema>;

constexpr const char* kInventoryClasses[] = {"QZMSG_PCIDevice",    "QZMSG_PCIBridge",
                                             "QZMSG_SystemSlot",   "QZMSG_SystemBoard",
                                             "QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"};

Job MakeView(std::vector<std::string> collect,
             std::function<void(const Session& session, Output& output)> print) {
  Job job;
  job.collect = std::move(collect);
  job.print = std::move(print);
  return job;
}

/// Without this, an empty output would not tell why it is empty.
void TellNothingMatches(const Filter& filter) {
  WriteMessage(fmt::format("no function or slot matches the filter {}", filter.GetText()));
}

/// Reads the machine as far as the filter keeps it.
MachineModel ReadKept(const vtq::Namespace& repository, const Filter& filter) {
  MachineModel kept = KeptOf(ReadMachine(repository), filter);
  const bool isNothing = kept.functions.empty() && kept.slots.empty();
  if (isNothing && !filter.IsEmpty()) TellNothingMatches(filter);
  return kept;
}

MachineStamp StampOf(const Session& session) {
  return {session.GetSystemName(), ReadMachineIds(), session.GetTime()};
}

using WriteWhole = std::function<void(const CollectedMachine& machine, Output& output)>;

/// Makes the job of a format that tells all of the machine.
Job WholeMachineJob(const Classes& declared, const WriteWhole& write) {
  const auto print = [write](const Session& session, Output& output) {
    CollectedMachine machine = CollectMachine(session.GetRepository());
    machine.stamp = StampOf(session);
    machine.notRead = session.GetReport().GetLines();
    machine.troubles = session.GetReport().GetTroubles();
    write(machine, output);
  };
  return MakeView(PlanQuery(declared, RecordedClasses()).collect, print);
}

/// The writer of such a format; empty for other formats.
WriteWhole WriterOfWhole(const std::string& format) {
  if (format == "jsonl") {
    return [](const CollectedMachine& machine, Output& output) {
      output.Write(MachineLine(machine) + "\n");
    };
  }
  if (format == "redfish") {
    return [](const CollectedMachine& machine, Output& output) {
      output.Write(SafeJson(RedfishJson(machine).dump(2)) + "\n");
    };
  }
  if (format != "netbox") return nullptr;
  return [](const CollectedMachine& machine, Output& output) {
    WriteJsonLines(output, NetBoxJson(machine));
  };
}

Job OverviewJob(const Options& options, const Classes& declared, const Terminal& terminal) {
  if (const auto write = WriterOfWhole(options.format)) return WholeMachineJob(declared, write);
  const bool asJson = options.format == "json";
  const auto print = [asJson, terminal, filter = options.filter](const Session& session,
                                                                 Output& output) {
    const vtq::Namespace& repository = session.GetRepository();
    const Overview overview = {ReadIdentity(), session.GetSystemName(), filter.GetText(),
                               ReadKept(repository, filter), session.GetReport().GetLines()};
    if (asJson) return WriteOverviewJson(output, overview);
    WriteOverview(output, overview, terminal);
  };
  Job job = MakeView(PlanQuery(declared, MachineClasses()).collect, print);
  job.showsTroubles = asJson || terminal.width.has_value();
  return job;
}

std::string OriginOf(const Options& options) {
  if (options.root.empty()) return "this machine";
  return options.root == "-" ? "a capture"
                             : "the capture " + fs::path(options.root).filename().string();
}

std::vector<std::string> CheckedClasses(const Options& options) {
  if (options.checksClasses) return {"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"};
  std::vector<std::string> classes = MachineClasses();
  classes.emplace_back(kDetailsClass);
  return classes;
}

Job ReportJob(const Options& options, const Classes& declared) {
  const auto print = [origin = OriginOf(options), part = options.reportPart](const Session& session,
                                                                             Output& output) {
    MachineFacts facts = ReadMachineFacts(session.GetRepository());
    std::vector<CheckFinding> findings = FindWith(MachineChecks(), facts);
    const ReportedMachine machine = {{ReadIdentity(), session.GetSystemName(), "",
                                      std::move(facts.machine), session.GetReport().GetLines()},
                                     std::move(findings)};
    if (part) return WriteMachinePart(output, machine, origin, *part);
    WritePage(output, machine, origin);
  };
  Job job = MakeView(PlanQuery(declared, CheckedClasses(options)).collect, print);
  job.troubled = kPageWithTroubles;
  return job;
}

/// The classes that the user names, or those that are printed without being named.
std::vector<std::string> AskedClasses(const Options& options, const Declarations& declared) {
  if (!options.classes.empty() || options.showAll) return options.classes;
  std::vector<std::string> classes;
  for (const vtq::ClassSchema& schema : declared.classes) {
    if (!declared.onRequest.contains(schema.name)) classes.push_back(schema.name);
  }
  return classes;
}

Job InstancesJob(const Options& options, const Declarations& plugins, const Terminal& terminal) {
  const Classes& declared = plugins.classes;
  std::vector<std::string> print = PlanQuery(declared, AskedClasses(options, plugins)).print;
  std::vector<std::string> collect = print;
  // The filter keeps a slot if it keeps a function in it.
  if (!options.filter.IsEmpty()) collect.emplace_back("QZMSG_DeviceInSlot");
  const auto write = [print, format = options.format, isShown = terminal.width.has_value(),
                      filter = options.filter](const Session& session, Output& output) {
    const auto writer = MakeInstanceWriter(format, output, {isShown, StampText(StampOf(session))});
    if (filter.IsEmpty()) return WriteInstances(session.GetRepository(), print, *writer);
    WriteInstances(*KeptOf(session.GetRepository(), filter), print, *writer);
  };
  return MakeView(PlanQuery(declared, collect).collect, write);
}

Job ClassesJob(const PluginSet& plugins) {
  Job job = MakeView({}, [&plugins](const Session& session, Output& output) {
    WriteClasses(output, session.GetPlugins(), plugins);
  });
  job.loadsAll = true;
  return job;
}

std::vector<CheckFinding> FindingsOf(const Options& options, const vtq::Namespace& repository) {
  if (!options.checksClasses) return FindWith(MachineChecks(), ReadMachineFacts(repository));
  return FindWith(ClassChecks(), ReadClassFacts(repository, !options.root.empty()));
}

Job CheckJob(const Options& options, const Classes& declared) {
  auto hasFailed = std::make_shared<bool>(false);
  const auto print = [options, hasFailed](const Session& session, Output& output) {
    const auto findings =
        Chosen(FindingsOf(options, session.GetRepository()), options.findingChoice);
    *hasFailed = HasFinding(findings, options.failOn);
    const auto write = options.format == "json" ? &WriteFindingsJson : &WriteFindings;
    write(output, findings);
  };
  Job job = MakeView(PlanQuery(declared, CheckedClasses(options)).collect, print);
  job.answer = [hasFailed] { return *hasFailed ? kFailed : kAllCollected; };
  return job;
}

Job MetricsJob(const Options& options, const Classes& declared) {
  const auto start = std::chrono::steady_clock::now();
  const auto print = [start](const Session& session, Output& output) {
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    WriteMetrics(output, {ReadIdentity(), ReadMachineFacts(session.GetRepository()),
                          session.GetReport().HasTroubles(), taken.count()});
  };
  return MakeView(PlanQuery(declared, CheckedClasses(options)).collect, print);
}

/// Makes the job of a view of the machine, as far as the filter keeps it.
Job MachineJob(const Options& options, const Classes& declared,
               const std::function<void(MachineModel kept, const MachineStamp& stamp,
                                        Output& output)>& write) {
  return MakeView(PlanQuery(declared, MachineClasses()).collect,
                  [write, filter = options.filter](const Session& session, Output& output) {
                    write(ReadKept(session.GetRepository(), filter), StampOf(session), output);
                  });
}

Job DevicesJob(const Options& options, const Classes& declared, const Terminal& terminal) {
  const auto write = [format = options.format, columns = options.columns, terminal](
                         const MachineModel& kept, const MachineStamp& stamp, Output& output) {
    if (format == "json") return WriteDevicesJson(output, kept);
    if (format == "jsonl") return WriteDevicesJsonLines(output, kept, stamp);
    if (format == "yaml") return WriteDevicesYaml(output, kept);
    if (format == "csv") return WriteDevicesCsv(output, kept, columns);
    WriteDevicesTable(output, kept, columns, terminal);
  };
  return MachineJob(options, declared, write);
}

Job SlotsJob(const Options& options, const Classes& declared, const Terminal& terminal) {
  const auto write = [format = options.format, choice = options.slotChoice,
                      columns = options.columns,
                      terminal](MachineModel kept, const MachineStamp& stamp, Output& output) {
    const MachineModel chosen = ChosenSlots(std::move(kept), choice);
    if (format == "json") return WriteSlotsJson(output, chosen);
    if (format == "jsonl") return WriteSlotsJsonLines(output, chosen, stamp);
    if (format == "yaml") return WriteSlotsYaml(output, chosen);
    if (format == "csv") return WriteSlotsCsv(output, chosen, columns);
    WriteSlotsTable(output, chosen, columns, terminal);
  };
  return MachineJob(options, declared, write);
}

/// Draws a tree; with a filter without the slots to which no port leads, which it could not choose.
void DrawTree(Output& output, const std::vector<RootBus>& tree, const MachineModel& machine,
              const Options& options) {
  std::vector<PartGroup> parts = PartsOf(tree, machine);
  if (options.filter.IsEmpty()) parts.push_back(SlotsWithoutPort(machine));
  if (!options.showAll) FoldParts(parts);
  if (options.format == "dot") return WriteDot(output, parts);
  WriteSvg(output, LayOut(parts), "PCI functions and slots");
}

Job TreeJob(const Options& options, const Classes& declared, const Terminal& terminal) {
  const auto print = [options, terminal](const Session& session, Output& output) {
    const MachineModel machine = ReadMachine(session.GetRepository());
    std::vector<RootBus> tree = MakePortTree(machine);
    if (!options.filter.IsEmpty()) {
      Prune(tree, [&](const MachineFunction& function) {
        return Keeps(options.filter, machine, function);
      });
      if (tree.empty()) TellNothingMatches(options.filter);
    }
    if (options.format == "json") return WriteTreeJson(output, tree, machine);
    if (options.format != "table") return DrawTree(output, tree, machine, options);
    if (!options.showAll) FoldAlike(tree);
    WriteTree(output, tree, machine, terminal);
  };
  return MakeView(PlanQuery(declared, MachineClasses()).collect, print);
}

Job ShowJob(const Options& options, const Classes& declared, const Terminal& terminal) {
  const auto print = [name = options.target, terminal, asJson = options.format == "json"](
                         const Session& session, Output& output) {
    const auto shown = FindNamed(session.GetRepository(), name);
    if (asJson) return WriteShownJson(output, *shown);
    WriteShown(output, *shown, terminal);
  };
  return MakeView(ClassesToFind(declared, options.target), print);
}

/// Prints what one side of `diff` tells: a line with the machine's identity, then its instances.
Job SideJob(const Classes& declared) {
  const std::vector<std::string> classes = ComparedMachineClasses();
  return MakeView(PlanQuery(declared, classes).collect,
                  [classes](const Session& session, Output& output) {
                    WriteIdentityLine(output, ReadIdentity());
                    const auto writer = MakeInstanceWriter("json", output);
                    WriteInstances(session.GetRepository(), classes, *writer);
                  });
}

bool IsPartOfInventory(const Options& options) {
  if (options.command == Command::kInstances) return !options.filter.IsEmpty();
  return options.checksClasses;
}

bool ShowsMachine(const Options& options) {
  if (options.command == Command::kShow) return !options.target.starts_with('/');
  return options.command == Command::kOverview || options.command == Command::kDevices ||
         options.command == Command::kSlots || options.command == Command::kTree;
}

bool ChecksMachine(const Options& options) {
  return options.command == Command::kMetrics || options.command == Command::kReport ||
         (options.command == Command::kCheck && !options.checksClasses);
}

void RequireClasses(const PluginSet& plugins, const std::vector<std::string>& names) {
  std::vector<std::string> missing;
  for (const std::string& name : names) {
    const auto& classes = plugins.declared.classes;
    const bool isDeclared =
        std::any_of(classes.begin(), classes.end(),
                    [&name](const vtq::ClassSchema& schema) { return schema.name == name; });
    if (!isDeclared) missing.push_back(name);
  }
  if (missing.empty()) return;
  throw std::runtime_error(
      fmt::format("this command needs classes that no loaded plug-in serves: {}; add the plug-in "
                  "that serves them with --plugin (\"pciinfo classes\" shows which one does), or "
                  "leave out --only-plugin",
                  fmt::join(missing, ", ")));
}

}  // namespace

void RequireInventoryClasses(const PluginSet& plugins) {
  RequireClasses(plugins, {std::begin(kInventoryClasses), std::end(kInventoryClasses)});
}

void RequireMachineClasses(const PluginSet& plugins) {
  RequireClasses(plugins, ComparedMachineClasses());
}

Job MakeJob(const Options& options, const PluginSet& plugins, const Terminal& terminal) {
  if (IsPartOfInventory(options)) RequireInventoryClasses(plugins);
  if (ShowsMachine(options)) RequireClasses(plugins, MachineClasses());
  if (ChecksMachine(options)) RequireClasses(plugins, CheckedClasses(options));
  const Classes& declared = plugins.declared.classes;
  switch (options.command) {
    case Command::kDevices:
      return DevicesJob(options, declared, terminal);
    case Command::kInstances:
      return InstancesJob(options, plugins.declared, terminal);
    case Command::kClasses:
      return ClassesJob(plugins);
    case Command::kSlots:
      return SlotsJob(options, declared, terminal);
    case Command::kTree:
      return TreeJob(options, declared, terminal);
    case Command::kShow:
      return ShowJob(options, declared, terminal);
    case Command::kCheck:
      return CheckJob(options, declared);
    case Command::kMetrics:
      return MetricsJob(options, declared);
    case Command::kReport:
      return ReportJob(options, declared);
    case Command::kDiff:
      return SideJob(declared);
    case Command::kCapture:  // not run as jobs
    case Command::kStore:
    case Command::kSchema:
    case Command::kFleet:
    case Command::kOverview:
      break;
  }
  return OverviewJob(options, declared, terminal);
}

}  // namespace pciinfo
