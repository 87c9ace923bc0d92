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

/// Whether there is a card, as the slot itself tells, and who tells it.
struct Presence {
  std::optional<bool> isCardThere;
  std::string teller;
};

/// The driver of the slot knows best: where ACPI does the hot-plug, the port's register may stand
/// still. Ports without hot-plug may report a card where there is none, so they are not asked.
Presence PresenceIn(const Machine& machine, const BusTree& tree, const Slot& slot) {
  const KernelSlot* kernel = slot.kernelSlot ? &machine.kernelSlots[*slot.kernelSlot] : nullptr;
  if (kernel != nullptr && kernel->adapter) {
    return {*kernel->adapter != 0, "kernel slot " + kernel->name};
  }
  const PortSlot* port = PortSlotOf(tree, slot);
  if (port == nullptr || !port->hotPlug) return {};
  return {port->cardPresent, "port " + ToText(tree.At(slot.targets.front().port).address)};
}

/// Whether the slot has power, as its driver tells, else as its port does.
std::optional<bool> PowerOf(const Machine& machine, const BusTree& tree, const Slot& slot) {
  const KernelSlot* kernel = slot.kernelSlot ? &machine.kernelSlots[*slot.kernelSlot] : nullptr;
  if (kernel != nullptr && kernel->power) return *kernel->power != 0;
  const PortSlot* port = PortSlotOf(tree, slot);
  return port == nullptr ? std::nullopt : port->powerOn;
}

/// Whether the power of a card has been turned off. Then nothing can answer.
bool IsPoweredOff(const Machine& machine, const BusTree& tree, const Slot& slot) {
  return PowerOf(machine, tree, slot) == false &&
         PresenceIn(machine, tree, slot).isCardThere == true;
}

std::string PowerConflict(const Machine& machine, const BusTree& tree, const Slot& slot,
                          const Found& found) {
  if (!IsPoweredOff(machine, tree, slot)) return "";
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
  if (IsPoweredOff(machine, tree, slot)) return "";
  const std::uint8_t usage = machine.slotRecords[*slot.record].usage;
  // The firmware has filled in its records at the start, and does not learn of hot-plug.
  const std::optional<bool> isCardThere = PresenceIn(machine, tree, slot).isCardThere;
  if (usage == kInUse && !found.firstFunction) {
    return isCardThere == false
               ? "the firmware says in use, and the slot reports no card: it was removed since the "
                 "start, or is not seated well"
               : "the firmware says in use, and no function answers: the card may have failed, or "
                 "is not seated well";
  }
  if (usage == kAvailable && found.firstFunction) {
    return "the firmware says available, and " + ToText(tree.At(*found.firstFunction).address) +
           " answers" +
           (isCardThere == true ? ": the card may have been added since the start" : "");
  }
  return "";
}

std::string PresenceConflict(const Machine& machine, const BusTree& tree, const Slot& slot,
                             const Found& found) {
  const Presence presence = PresenceIn(machine, tree, slot);
  if (!presence.isCardThere || found.isShared || IsPoweredOff(machine, tree, slot)) return "";
  if (*presence.isCardThere && !found.firstFunction) {
    return presence.teller + " reports a card, and no function answers";
  }
  if (!*presence.isCardThere && found.firstFunction) {
    return presence.teller + " reports no card, and " +
           ToText(tree.At(*found.firstFunction).address) + " answers";
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

SlotState StateOf(const Machine& machine, const BusTree& tree, const Slot& slot,
                  const Found& found) {
  if (found.firstFunction || IsPoweredOff(machine, tree, slot)) return SlotState::kOccupied;
  if (slot.targets.empty() || found.isShared) return SlotState::kUnknown;
  // What the slot reports is newer than the usage that the firmware says.
  const bool isReportedEmpty = PresenceIn(machine, tree, slot).isCardThere == false &&
                               LinkConflict(tree, slot, found).empty();
  return slot.conflicts.empty() || isReportedEmpty ? SlotState::kEmpty : SlotState::kUnknown;
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
         {UsageConflict(machine, tree, slot, found[i]),
          PresenceConflict(machine, tree, slot, found[i]),
          PowerConflict(machine, tree, slot, found[i]), LinkConflict(tree, slot, found[i])}) {
      if (!conflict.empty()) slot.conflicts.push_back(conflict);
    }
    slot.state = StateOf(machine, tree, slot, found[i]);
  }
  AddOnBoardConflicts(machine, tree, resolution);
}

}  // namespace topology
