// SPDX-License-Identifier: Apache-2.0
#include "host/metrics/metrics.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string>

#include "host/check/machine_checks.h"
#include "host/machine/cards.h"
#include "host/machine/link_text.h"
#include "host/machine/names.h"
#include "host/metrics/metric_writer.h"

namespace pciinfo {
namespace {

std::string SlotLabel(const MachineFunction& function, const MachineModel& machine) {
  return function.slot ? machine.slots[*function.slot].name : "";
}

/// The labels that every sample about a function has.
MetricLabels LabelsOf(const MachineFunction& function, const MachineModel& machine) {
  return {{"address", FormatAddress(function.address)},
          {"slot", SlotLabel(function, machine)},
          {"driver", function.driver}};
}

MetricLabels With(MetricLabels labels, const char* name, std::string value) {
  labels.emplace_back(name, std::move(value));
  return labels;
}

/// Adds nothing for a firmware that names nothing.
void AddMachine(MetricFamily& family, const MachineIdentity& identity) {
  const MetricLabels labels = {{"vendor", NameIn(identity.maker)},
                               {"product", NameIn(identity.product)},
                               {"board", NameIn(identity.boardProduct)},
                               {"bios_version", NameIn(identity.biosVersion)}};
  const bool isNamed = std::any_of(labels.begin(), labels.end(),
                                   [](const auto& label) { return !label.second.empty(); });
  if (isNamed) family.Add(labels, 1);
}

void WriteCollection(Output& output, const MetricsInput& input) {
  MetricFamily build{"pciinfo_build_info", "Version of pciinfo; the value is always 1."};
  build.Add({{"version", PCIINFO_VERSION}}, 1);
  MetricFamily success{"pciinfo_collection_success",
                       "Whether everything could be collected (1), or not (0)."};
  success.Add({}, input.hasTroubles ? 0 : 1);
  MetricFamily seconds{"pciinfo_collection_duration_seconds", "Time that collecting took."};
  seconds.Add({}, input.seconds);
  MetricFamily machine{"pciinfo_machine_info",
                       "The machine, as its firmware names it; the value is always 1."};
  AddMachine(machine, input.identity);
  for (const MetricFamily* family : {&build, &success, &seconds, &machine})
    WriteMetricFamily(output, *family);
}

const char* PlaceLabel(FunctionPlace place) {
  switch (place) {
    case FunctionPlace::kSlot:
      return "slot";
    case FunctionPlace::kSharedPort:
      return "one of several slots";
    case FunctionPlace::kUnnamedSlot:
      return "unnamed slot";
    case FunctionPlace::kOnBoard:
      return "on board";
    case FunctionPlace::kUnknown:
      break;
  }
  return "unknown";
}

const char* StateLabel(SlotState state) {
  if (state == SlotState::kUnknown) return "unknown";
  return state == SlotState::kEmpty ? "empty" : "occupied";
}

void WriteCounts(Output& output, const MachineModel& machine) {
  MetricFamily functions{"pciinfo_functions", "PCI functions by where they are."};
  for (const FunctionPlace place :
       {FunctionPlace::kSlot, FunctionPlace::kSharedPort, FunctionPlace::kUnnamedSlot,
        FunctionPlace::kOnBoard, FunctionPlace::kUnknown}) {
    functions.Add({{"place", PlaceLabel(place)}},
                  static_cast<double>(machine.FunctionsAt(place).size()));
  }
  MetricFamily slots{"pciinfo_slots", "System slots by their state."};
  for (const SlotState state : {SlotState::kEmpty, SlotState::kOccupied, SlotState::kUnknown}) {
    slots.Add({{"state", StateLabel(state)}},
              static_cast<double>(
                  std::count_if(machine.slots.begin(), machine.slots.end(),
                                [&](const MachineSlot& slot) { return slot.state == state; })));
  }
  WriteMetricFamily(output, functions);
  WriteMetricFamily(output, slots);
}

void WriteSlots(Output& output, const MachineModel& machine) {
  MetricFamily occupied{"pciinfo_slot_occupied",
                        "Whether a slot holds a card (1) or is empty (0); no sample if unknown."};
  MetricFamily conflicts{"pciinfo_slot_conflicts",
                         "Contradictions between what is known about a slot."};
  for (const MachineSlot& slot : machine.slots) {
    const MetricLabels labels = {{"slot", slot.name}};
    if (slot.state != SlotState::kUnknown)
      occupied.Add(labels, slot.state == SlotState::kOccupied ? 1 : 0);
    conflicts.Add(labels, static_cast<double>(slot.conflicts.size()));
  }
  WriteMetricFamily(output, occupied);
  WriteMetricFamily(output, conflicts);
}

/// Transfers a second on each lane, of "8.0 GT/s".
std::optional<double> Rate(const std::string& speed) {
  double gigatransfers = 0;
  const auto [end, error] =
      std::from_chars(speed.data(), speed.data() + speed.size(), gigatransfers);
  if (error != std::errc() || std::string_view(end) != " GT/s") return std::nullopt;
  return gigatransfers * 1e9;
}

template <class Value>
std::optional<Value> Lesser(const std::optional<Value>& one, const std::optional<Value>& other) {
  if (!one || !other) return std::nullopt;
  return std::min(*one, *other);
}

template <class Value>
void AddKnown(MetricFamily& family, const MetricLabels& labels, const std::optional<Value>& value) {
  if (value) family.Add(labels, static_cast<double>(*value));
}

void WriteLinks(Output& output, const MachineModel& machine) {
  MetricFamily width{"pciinfo_link_width_lanes", "Lanes of the link above a card now."};
  MetricFamily mostWidth{"pciinfo_link_possible_width_lanes",
                         "Most lanes that both ends of the link allow."};
  MetricFamily rate{"pciinfo_link_transfers_per_second",
                    "Speed of the link above a card now, for each lane; idle cards lower it."};
  MetricFamily mostRate{"pciinfo_link_possible_transfers_per_second",
                        "Highest speed that both ends of the link allow."};
  for (const MachineFunction& function : machine.functions) {
    const MachineFunction* port = PortOfLink(function, machine);
    if (port == nullptr || function.physicalFunction) continue;
    const MetricLabels labels = LabelsOf(function, machine);
    AddKnown(width, labels, function.link.width);
    AddKnown(mostWidth, labels, Lesser(function.link.maxWidth, port->link.maxWidth));
    AddKnown(rate, labels, Rate(function.link.speed));
    AddKnown(mostRate, labels, Lesser(Rate(function.link.maxSpeed), Rate(port->link.maxSpeed)));
  }
  for (const MetricFamily* family : {&width, &mostWidth, &rate, &mostRate})
    WriteMetricFamily(output, *family);
}

void AddErrors(MetricFamily& errors, const MetricLabels& labels, const FunctionFacts& facts) {
  const std::array counts = {std::pair{"correctable", facts.corrected.total},
                             std::pair{"nonfatal", facts.nonFatal.total},
                             std::pair{"fatal", facts.fatal.total}};
  for (const auto& [severity, count] : counts)
    AddKnown(errors, With(labels, "severity", severity), count);
}

void WriteFunctions(Output& output, const MachineFacts& facts) {
  MetricFamily functions{"pciinfo_function_info",
                         "A PCI function that is no bridge; the value is always 1."};
  MetricFamily devices{"pciinfo_kernel_device_info",
                       "Network interface or block device of a function; the value is always 1."};
  MetricFamily errors{
      "pciinfo_function_errors",
      "Errors that the kernel has counted for a function since it appeared on the bus."};
  for (std::size_t i = 0; i < facts.functions.size(); ++i) {
    const MachineFunction& function = facts.machine.functions[i];
    if (function.physicalFunction) continue;
    const MetricLabels labels = LabelsOf(function, facts.machine);
    if (!IsBridgeOrChipset(function)) {
      functions.Add(With(With(labels, "id", IdText(function)), "card", MakerAndModel(function)), 1);
    }
    AddErrors(errors, labels, facts.functions[i]);
    for (const SystemDevice& device : facts.functions[i].systemDevices) {
      const bool isMeasured = device.kind == "network" || device.kind == "block";
      if (isMeasured) devices.Add(With(labels, "device", device.name), 1);
    }
  }
  for (const MetricFamily* family : {&functions, &devices, &errors})
    WriteMetricFamily(output, *family);
}

void WriteFindings(Output& output, const MachineFacts& facts) {
  MetricFamily findings{"pciinfo_findings",
                        "Functions and slots that pciinfo check reports, by kind of finding."};
  for (const CheckFinding& finding : FindWith(MachineChecks(), facts)) {
    findings.Add({{"code", finding.code}, {"severity", SeverityText(finding.severity)}},
                 static_cast<double>(finding.objects.size()));
  }
  WriteMetricFamily(output, findings);
}

}  // namespace

void WriteMetrics(Output& output, const MetricsInput& input) {
  WriteCollection(output, input);
  WriteCounts(output, input.facts.machine);
  WriteSlots(output, input.facts.machine);
  WriteFunctions(output, input.facts);
  WriteLinks(output, input.facts.machine);
  WriteFindings(output, input.facts);
  WriteMetricsEnd(output);
}

}  // namespace pciinfo
