// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>

#include "topology/instances.h"
#include "topology/link_properties.h"
#include "topology/properties.h"

namespace topology {
namespace {

using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;

std::string SourceText(SlotSource source) {
  switch (source) {
    case SlotSource::kFirmwareRecord:
      return "SMBIOS record";
    case SlotSource::kKernelSlot:
      return "kernel slot";
    case SlotSource::kAcpi:
      return "ACPI";
    case SlotSource::kPort:
      return "port";
  }
  return "";
}

std::string StateText(SlotState state) {
  switch (state) {
    case SlotState::kUnknown:
      return "unknown";
    case SlotState::kEmpty:
      return "empty";
    case SlotState::kOccupied:
      return "occupied";
  }
  return "";
}

std::string CertaintyText(Certainty certainty) {
  return certainty == Certainty::kCertain ? "certain" : "likely";
}

std::string TargetText(const BusTree& tree, const Target& target) {
  return ToText(target.kind == Target::Kind::kPort ? tree.At(target.port).address : target.device);
}

/// Empty for the reserved code.
std::string IndicatorText(Indicator indicator) {
  constexpr std::array<const char*, 4> kTexts{"", "on", "blinking", "off"};
  return kTexts[static_cast<std::size_t>(indicator)];
}

std::string AttentionText(unsigned attention) {
  constexpr std::array<const char*, 3> kTexts{"off", "on", "blinking"};
  return attention < kTexts.size() ? kTexts[attention] : "";
}

/// Lanes by the data bus width of a PCI Express slot (DSP0134, 7.10.2); 0 for others.
std::uint8_t LanesOf(std::uint8_t width) {
  constexpr std::array<std::uint8_t, 7> kLanes{1, 2, 4, 8, 12, 16, 32};
  constexpr std::uint8_t kOneLane = 0x08;
  const bool isKnown = width >= kOneLane && width < kOneLane + kLanes.size();
  return isKnown ? kLanes[width - kOneLane] : std::uint8_t{0};
}

std::string BoardOf(const Machine& machine, std::uint16_t slotHandle) {
  for (const BoardRecord& board : machine.boardRecords) {
    const auto& contained = board.contained;
    if (std::find(contained.begin(), contained.end(), slotHandle) != contained.end()) {
      return board.product;
    }
  }
  return "";
}

/// What the registers of the port tell of the slot's equipment.
void SetPortSlot(const PortSlot& slot, PropertyWriter& writer) {
  if (slot.physicalNumber != 0) writer.Set("PhysicalSlotNumber", slot.physicalNumber);
  writer.Set("PortHotPlug", slot.hotPlug);
  writer.Set("PortSurpriseRemoval", slot.surprise);
  writer.Set("PortCardPresent", slot.cardPresent);
  writer.Set("PowerOn", slot.powerOn);
  writer.Set("LatchOpen", slot.latchOpen);
  if (slot.attentionIndicator) {
    writer.Set("AttentionIndicator", IndicatorText(*slot.attentionIndicator));
  }
  if (slot.powerIndicator) writer.Set("PowerIndicator", IndicatorText(*slot.powerIndicator));
  if (slot.powerOn) writer.Set("PowerFault", slot.powerFault);
}

/// What the slot's driver tells.
void SetKernelSlot(const KernelSlot& slot, PropertyWriter& writer) {
  writer.Set("KernelSlot", slot.name);
  if (slot.power) writer.Set("PowerOn", *slot.power != 0);
  if (slot.attention) writer.Set("AttentionIndicator", AttentionText(*slot.attention));
  if (slot.latch) writer.Set("LatchOpen", *slot.latch != 0);
  if (slot.adapter) writer.Set("CardPresent", *slot.adapter != 0);
}

/// A slot with several ports has several kernel slots, of which only the names are told.
void SetKernelSlots(const Machine& machine, const Slot& slot, PropertyWriter& writer) {
  if (slot.kernelSlots.size() == 1) {
    SetKernelSlot(machine.kernelSlots[slot.kernelSlots.front()], writer);
    return;
  }
  std::vector<std::string> names;
  for (const std::size_t kernel : slot.kernelSlots) {
    names.push_back(machine.kernelSlots[kernel].name);
  }
  writer.SetTexts("KernelSlots", names);
}

void SetRecord(const SlotRecord& record, PropertyWriter& writer) {
  writer.Set("RecordHandle", record.handle);
  writer.Set("SlotID", record.id);
  writer.Set("SlotType", record.type);
  writer.Set("SlotDataBusWidth", record.width);
  if (const std::uint8_t lanes = LanesOf(record.width)) writer.Set("SlotLanes", lanes);
  writer.Set("SlotLength", record.length);
  writer.Set("FirmwareUsage", record.usage);
  writer.Set("SupportsHotPlug", record.hotPlug);
  if (record.address) writer.Set("FirmwareAddress", ToText(*record.address));
  std::vector<std::string> peers;
  for (const Address& peer : record.peers) peers.push_back(ToText(peer));
  writer.SetTexts("PeerAddresses", peers);
}

/// What the port of a slot says; nothing for slots with several ports or none.
void SetPort(const BusTree& tree, const Slot& slot, PropertyWriter& writer) {
  if (slot.targets.size() != 1 || slot.targets.front().kind != Target::Kind::kPort) return;
  const Function& port = tree.At(slot.targets.front().port);
  writer.Set("NumaNode", port.numaNode);
  if (!port.config.express) return;
  const Express& express = *port.config.express;
  SetMaxLink(express, writer);
  // Ports may show the link of a card that is gone.
  if (slot.state != SlotState::kEmpty) SetLinkNow(express, writer);
  if (express.slot) SetPortSlot(*express.slot, writer);
}

Properties InstanceOf(const Snapshot& snapshot, const Slot& slot) {
  const Machine& machine = snapshot.GetMachine();
  PropertyWriter writer;
  writer.Set("Name", slot.name);
  writer.Set("Source", SourceText(slot.source));
  writer.Set("State", StateText(slot.state));
  if (slot.record) {
    const SlotRecord& record = machine.slotRecords[*slot.record];
    SetRecord(record, writer);
    writer.Set("Board", BoardOf(machine, record.handle));
  }
  std::vector<std::string> ports;
  for (const Target& target : slot.targets) ports.push_back(TargetText(snapshot.GetTree(), target));
  writer.SetTexts("Leads", ports);
  writer.Set("LeadsNowhereBecause", slot.noTargetBecause);
  SetPort(snapshot.GetTree(), slot, writer);
  // What the driver tells is stronger than the registers of the port.
  SetKernelSlots(machine, slot, writer);
  if (slot.outer) writer.Set("OuterSlot", snapshot.GetResolution().slots[*slot.outer].name);
  writer.SetTexts("Conflicts", slot.conflicts);
  return writer.Take();
}

Properties InstanceOf(const Snapshot& snapshot, const SharedPlace& shared) {
  const Resolution& resolution = snapshot.GetResolution();
  PropertyWriter writer;
  writer.Set("Port", TargetText(snapshot.GetTree(), shared.target));
  std::vector<std::string> slots;
  for (const std::size_t slot : shared.slots) slots.push_back(resolution.slots[slot].name);
  writer.SetTexts("Slots", slots);
  std::vector<std::string> functions;
  for (const std::size_t function : shared.functions) {
    functions.push_back(ToText(snapshot.GetMachine().functions[function].address));
  }
  writer.SetTexts("Functions", functions);
  writer.Set("Evidence", shared.evidence);
  return writer.Take();
}

TCIMValue ReferenceTo(const std::string& nameSpace, const char* className, const char* key,
                      const std::string& value) {
  return TCIMValue(TCIMReference(nameSpace, className, {{key, TCIMValue(value)}}));
}

}  // namespace

std::vector<Properties> SlotInstances(const Snapshot& snapshot) {
  std::vector<Properties> instances;
  for (const Slot& slot : snapshot.GetResolution().slots) {
    instances.push_back(InstanceOf(snapshot, slot));
  }
  return instances;
}

std::vector<Properties> SharedPortInstances(const Snapshot& snapshot) {
  std::vector<Properties> instances;
  for (const SharedPlace& shared : snapshot.GetResolution().shared) {
    instances.push_back(InstanceOf(snapshot, shared));
  }
  return instances;
}

std::vector<Properties> FunctionInSlotInstances(const Snapshot& snapshot,
                                                const std::string& nameSpace) {
  std::vector<Properties> instances;
  for (const Occupant& occupant : snapshot.GetResolution().occupants) {
    PropertyWriter writer;
    writer.Set("Certainty", CertaintyText(occupant.certainty));
    writer.Set("Evidence", occupant.evidence);
    Properties properties = writer.Take();
    properties["Antecedent"] = ReferenceTo(nameSpace, kSlotClass, "Name",
                                           snapshot.GetResolution().slots[occupant.slot].name);
    properties["Dependent"] =
        ReferenceTo(nameSpace, kFunctionClass, "Address",
                    ToText(snapshot.GetMachine().functions[occupant.function].address));
    instances.push_back(std::move(properties));
  }
  return instances;
}

}  // namespace topology
