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

/// The registers of the only port of a slot; null where there is none.
const PortSlot* PortSlotOf(const BusTree& tree, const Slot& slot) {
  if (slot.targets.size() != 1 || slot.targets.front().kind != Target::Kind::kPort) return nullptr;
  const auto& express = tree.At(slot.targets.front().port).config.express;
  return express && express->slot ? &*express->slot : nullptr;
}

/// The kernel's slot, for slots with one.
const KernelSlot* KernelSlotOf(const Machine& machine, const Slot& slot) {
  return slot.kernelSlots.size() == 1 ? &machine.kernelSlots[slot.kernelSlots.front()] : nullptr;
}

/// Whether there is a card, as the slot itself tells, and who tells it.
struct Presence {
  std::optional<bool> isCardThere;
  std::string teller;
};

/// Compares what is known of one slot after the other.
class Judge {
 public:
  Judge(const Machine& machine, const BusTree& tree, const std::vector<Slot>& slots)
      : machine_(machine), tree_(tree) {
    arePortsWatched_ = std::none_of(slots.begin(), slots.end(),
                                    [&](const Slot& slot) { return IsPortContradicted(slot); });
  }

  std::vector<std::string> ConflictsOf(const Slot& slot, const Found& found) const;
  SlotState StateOf(const Slot& slot, const Found& found) const;

 private:
  bool IsPortContradicted(const Slot& slot) const;
  Presence PresenceIn(const Slot& slot) const;
  std::optional<bool> PowerOf(const Slot& slot) const;
  bool IsPoweredOff(const Slot& slot) const;
  std::string PowerConflict(const Slot& slot, const Found& found) const;
  std::string LinkConflict(const Slot& slot, const Found& found) const;
  std::string UsageConflict(const Slot& slot, const Found& found) const;
  std::string PresenceConflict(const Slot& slot, const Found& found) const;
  std::string NameOfPort(const Slot& slot) const {
    return ToText(tree_.At(slot.targets.front().port).address);
  }

  const Machine& machine_;
  const BusTree& tree_;
  bool arePortsWatched_ = true;  ///< false where the presence registers of ports do not change
};

/// Where ACPI does the hot-plug, as in emulated machines, the driver of a slot knows of the card
/// and the register of its port does not.
bool Judge::IsPortContradicted(const Slot& slot) const {
  const KernelSlot* const kernel = KernelSlotOf(machine_, slot);
  const PortSlot* const port = PortSlotOf(tree_, slot);
  return kernel != nullptr && kernel->adapter && port != nullptr && port->hotPlug &&
         (*kernel->adapter != 0) != port->cardPresent;
}

/// Ports without hot-plug may report a card where there is none, so they are not asked.
Presence Judge::PresenceIn(const Slot& slot) const {
  const KernelSlot* const kernel = KernelSlotOf(machine_, slot);
  if (kernel != nullptr && kernel->adapter) {
    return {*kernel->adapter != 0, "kernel slot " + kernel->name};
  }
  const PortSlot* const port = PortSlotOf(tree_, slot);
  if (port == nullptr || !port->hotPlug || !arePortsWatched_) return {};
  return {port->cardPresent, "port " + NameOfPort(slot)};
}

/// Whether the slot has power, as its driver tells, else as its port does.
std::optional<bool> Judge::PowerOf(const Slot& slot) const {
  const KernelSlot* const kernel = KernelSlotOf(machine_, slot);
  if (kernel != nullptr && kernel->power) return *kernel->power != 0;
  const PortSlot* const port = PortSlotOf(tree_, slot);
  return port == nullptr ? std::nullopt : port->powerOn;
}

/// Whether the power of a card has been turned off. Then nothing can answer.
bool Judge::IsPoweredOff(const Slot& slot) const {
  return PowerOf(slot) == false && PresenceIn(slot).isCardThere == true;
}

std::string Judge::PowerConflict(const Slot& slot, const Found& found) const {
  if (!IsPoweredOff(slot)) return "";
  return found.firstFunction ? "the slot has no power, and a function answers"
                             : "a card is in the slot, which has no power";
}

/// A link comes up only with something at its end.
std::string Judge::LinkConflict(const Slot& slot, const Found& found) const {
  if (PortSlotOf(tree_, slot) == nullptr || found.isShared || found.firstFunction) return "";
  const Function& port = tree_.At(slot.targets.front().port);
  if (!port.config.express->linkActive) return "";
  return "the link of port " + ToText(port.address) + " is active, and no function answers";
}

/// The firmware has filled in its records at the start, and does not learn of hot-plug.
std::string Judge::UsageConflict(const Slot& slot, const Found& found) const {
  if (!slot.record || slot.targets.empty() || found.isShared || IsPoweredOff(slot)) return "";
  const std::uint8_t usage = machine_.slotRecords[*slot.record].usage;
  const std::optional<bool> isCardThere = PresenceIn(slot).isCardThere;
  if (usage == kInUse && !found.firstFunction) {
    return isCardThere == false
               ? "the firmware says in use, and the slot reports no card: the card was removed "
                 "since the start, or is not seated well"
               : "the firmware says in use, and no function answers: the card may have failed, or "
                 "is not seated well";
  }
  if (usage == kAvailable && found.firstFunction) {
    return "the firmware says available, and " + ToText(tree_.At(*found.firstFunction).address) +
           " answers" +
           (isCardThere == true ? ": the card may have been added since the start" : "");
  }
  return "";
}

std::string Judge::PresenceConflict(const Slot& slot, const Found& found) const {
  const Presence presence = PresenceIn(slot);
  if (!presence.isCardThere || found.isShared || IsPoweredOff(slot)) return "";
  if (*presence.isCardThere && !found.firstFunction) {
    return presence.teller + " reports a card, and no function answers";
  }
  if (!*presence.isCardThere && found.firstFunction) {
    return presence.teller + " reports no card, and " +
           ToText(tree_.At(*found.firstFunction).address) + " answers";
  }
  return "";
}

std::vector<std::string> Judge::ConflictsOf(const Slot& slot, const Found& found) const {
  std::vector<std::string> conflicts{UsageConflict(slot, found), PresenceConflict(slot, found),
                                     PowerConflict(slot, found), LinkConflict(slot, found)};
  std::erase(conflicts, "");
  return conflicts;
}

SlotState Judge::StateOf(const Slot& slot, const Found& found) const {
  if (found.firstFunction || IsPoweredOff(slot)) return SlotState::kOccupied;
  if (slot.targets.empty() || found.isShared) return SlotState::kUnknown;
  // What the slot reports is newer than the usage that the firmware says.
  const bool isReportedEmpty =
      PresenceIn(slot).isCardThere == false && LinkConflict(slot, found).empty();
  return slot.conflicts.empty() || isReportedEmpty ? SlotState::kEmpty : SlotState::kUnknown;
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
  const Judge judge(machine, tree, resolution.slots);
  for (std::size_t i = 0; i < resolution.slots.size(); ++i) {
    Slot& slot = resolution.slots[i];
    slot.conflicts = judge.ConflictsOf(slot, found[i]);
    slot.state = judge.StateOf(slot, found[i]);
  }
  AddOnBoardConflicts(machine, tree, resolution);
}

}  // namespace topology
