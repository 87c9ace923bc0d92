// SPDX-License-Identifier: Apache-2.0
#include "topology/slot_conflicts.h"

#include <algorithm>

namespace topology {
namespace {

// Usage of a slot record (DSP0134, 7.10.3).
constexpr std::uint8_t kAvailable = 3;
constexpr std::uint8_t kInUse = 4;

/// What is known of one slot before it is judged.
struct Found {
  std::optional<std::size_t> firstFunction;
  bool isShared = false;
};

const PortSlot* PortSlotOf(const BusTree& tree, const Slot& slot) {
  if (slot.targets.size() != 1 || slot.targets.front().kind != Target::Kind::kPort) return nullptr;
  const auto& express = tree.At(slot.targets.front().port).config.express;
  return express && express->slot ? &*express->slot : nullptr;
}

/// Whether the driver of the slot has turned off the power of a card. Then nothing can answer.
bool IsPoweredOff(const Machine& machine, const Slot& slot) {
  if (!slot.kernelSlot) return false;
  const KernelSlot& kernel = machine.kernelSlots[*slot.kernelSlot];
  return kernel.power == 0U && kernel.adapter.value_or(0) != 0;
}

std::string PowerConflict(const Machine& machine, const Slot& slot, const Found& found) {
  if (!IsPoweredOff(machine, slot)) return "";
  return found.firstFunction ? "the slot has no power, and a function answers"
                             : "a card is in the slot, which has no power";
}

/// A link comes up only with something at its end.
std::string LinkConflict(const BusTree& tree, const Slot& slot, const Found& found) {
  if (PortSlotOf(tree, slot) == nullptr || found.isShared || found.firstFunction) return "";
  const Function& port = tree.At(slot.targets.front().port);
  if (!port.config.express->linkActive) return "";
  return "the link of port " + ToText(port.address) + " is active, and no function answers";
}

std::string UsageConflict(const Machine& machine, const BusTree& tree, const Slot& slot,
                          const Found& found) {
  if (!slot.record || slot.targets.empty() || found.isShared) return "";
  if (IsPoweredOff(machine, slot)) return "";
  const std::uint8_t usage = machine.slotRecords[*slot.record].usage;
  if (usage == kInUse && !found.firstFunction) {
    return "the firmware says in use, and no function answers: the card may have failed, or is not "
           "seated well";
  }
  if (usage == kAvailable && found.firstFunction) {
    return "the firmware says available, and " + ToText(tree.At(*found.firstFunction).address) +
           " answers";
  }
  return "";
}

/// Ports without hot-plug may report a card where there is none, so only the others count.
std::string PresenceConflict(const BusTree& tree, const Slot& slot, const Found& found) {
  const PortSlot* port = PortSlotOf(tree, slot);
  if (port == nullptr || found.isShared || !port->hotPlug) return "";
  const std::string name = "port " + ToText(tree.At(slot.targets.front().port).address);
  if (port->cardPresent && !found.firstFunction) {
    return name + " reports a card, and no function answers";
  }
  if (!port->cardPresent && found.firstFunction) {
    return name + " reports no card, and " + ToText(tree.At(*found.firstFunction).address) +
           " answers";
  }
  return "";
}

/// Some firmware lists cards as onboard devices, or gives a slot the address of a soldered device.
void AddOnBoardConflicts(const Machine& machine, const BusTree& tree, Resolution& resolution) {
  std::vector<Slot*> slots(machine.functions.size(), nullptr);
  for (const Occupant& occupant : resolution.occupants) {
    slots[occupant.function] = &resolution.slots[occupant.slot];
  }
  for (const OnBoardRecord& record : machine.onBoardRecords) {
    const auto function = record.enabled ? tree.Find(record.address) : std::nullopt;
    if (!function || slots[*function] == nullptr) continue;
    slots[*function]->conflicts.push_back("the firmware lists " + ToText(record.address) +
                                          " as the onboard device \"" + record.designation +
                                          "\" as well");
  }
}

SlotState StateOf(const Slot& slot, const Found& found, bool isPoweredOff) {
  if (found.firstFunction) return SlotState::kOccupied;
  if (isPoweredOff) return SlotState::kOccupied;
  if (slot.targets.empty() || found.isShared || !slot.conflicts.empty()) return SlotState::kUnknown;
  return SlotState::kEmpty;
}

std::vector<Found> WhatIsFound(const Resolution& resolution) {
  std::vector<Found> found(resolution.slots.size());
  for (const Occupant& occupant : resolution.occupants) {
    auto& first = found[occupant.slot].firstFunction;
    if (!first) first = occupant.function;
  }
  for (const SharedPlace& shared : resolution.shared) {
    // Where nothing answers behind the shared place, all its slots are empty.
    if (shared.functions.empty()) continue;
    for (const std::size_t slot : shared.slots) found[slot].isShared = true;
  }
  // A card in an inner slot, as on a riser, shows that the outer one holds something.
  for (std::size_t i = resolution.slots.size(); i-- > 0;) {
    for (auto outer = resolution.slots[i].outer; outer && found[i].firstFunction;
         outer = resolution.slots[*outer].outer) {
      if (found[*outer].firstFunction) break;
      found[*outer].firstFunction = found[i].firstFunction;
    }
  }
  return found;
}

}  // namespace

void JudgeSlots(const Machine& machine, const BusTree& tree, Resolution& resolution) {
  const std::vector<Found> found = WhatIsFound(resolution);
  for (std::size_t i = 0; i < resolution.slots.size(); ++i) {
    Slot& slot = resolution.slots[i];
    for (const std::string& conflict :
         {UsageConflict(machine, tree, slot, found[i]), PresenceConflict(tree, slot, found[i]),
          PowerConflict(machine, slot, found[i]), LinkConflict(tree, slot, found[i])}) {
      if (!conflict.empty()) slot.conflicts.push_back(conflict);
    }
    slot.state = StateOf(slot, found[i], IsPoweredOff(machine, slot));
  }
  AddOnBoardConflicts(machine, tree, resolution);
}

}  // namespace topology
