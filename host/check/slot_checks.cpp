// SPDX-License-Identifier: Apache-2.0

// The checks of slots: what should be in them and is not, and where their records are wrong.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>
#include <map>

#include "host/check/machine_checks.h"
#include "host/machine/cards.h"
#include "host/machine/names.h"

namespace pciinfo {
namespace {

// Usage of a slot record (DSP0134, 7.10.3).
constexpr unsigned kUsageAvailable = 3;
constexpr unsigned kUsageInUse = 4;

/// The slots for which fits(slot) is true, with what their sources contradict each other in.
template <class Fits>
std::vector<AffectedObject> ContradictedSlots(const MachineModel& machine, const Fits& fits) {
  std::vector<AffectedObject> objects;
  for (const MachineSlot& slot : machine.slots) {
    if (slot.conflicts.empty() || !fits(slot)) continue;
    objects.push_back(ObjectOf(slot, fmt::format("{}", fmt::join(slot.conflicts, "; "))));
  }
  return objects;
}

/// Whether a card should answer and does not. What does not answer leaves the state open, or empty
/// where the slot reports that the card is gone.
bool IsSilent(const MachineSlot& slot) {
  return !slot.conflicts.empty() && slot.state != SlotState::kOccupied;
}

/// Whether only the usage in its record says that there is a card.
bool IsSilentByRecord(const MachineSlot& slot) {
  return IsSilent(slot) && slot.usage == kUsageInUse && slot.conflicts.size() == 1;
}

/// Whether a device that is not on the PCI bus may be in the slot, so that nothing need answer:
/// SATA and SAS disks fit into M.2 sockets and U.2 bays, wireless cards may use USB only.
bool TakesOtherDevices(const MachineSlot& slot) {
  // Types of slot records (DSP0134, 7.10.1).
  constexpr unsigned kTypes[] = {0x14, 0x15, 0x16, 0x17,               // M.2
                                 0x1F, 0x20, 0x24, 0x25,               // U.2
                                 0x21, 0x22, 0x23};                    // Mini cards
  constexpr const char* kNames[] = {"M.2", "M2", "U.2", "m.2", "m2"};  // where the type is another
  const auto isNamed = [&slot](const char* name) {
    return slot.name.find(name) != std::string::npos;
  };
  return std::find(std::begin(kTypes), std::end(kTypes), slot.type) != std::end(kTypes) ||
         std::any_of(std::begin(kNames), std::end(kNames), isNamed);
}

/// Some firmware calls every slot in use. If it calls no slot available, and half of those where a
/// card would be found or more are silent, its usages are more likely wrong than the cards.
bool IsUsageDoubtful(const MachineModel& machine) {
  std::size_t inUse = 0;
  std::size_t silent = 0;
  for (const MachineSlot& slot : machine.slots) {
    if (slot.usage == kUsageAvailable) return false;
    if (slot.usage != kUsageInUse || slot.ports.empty() || TakesOtherDevices(slot)) continue;
    ++inUse;
    if (IsSilentByRecord(slot)) ++silent;
  }
  return silent > 1 && 2 * silent >= inUse;
}

std::vector<AffectedObject> SilentSlots(const MachineFacts& facts) {
  const bool isDoubtful = IsUsageDoubtful(facts.machine);
  return ContradictedSlots(facts.machine, [isDoubtful](const MachineSlot& slot) {
    return IsSilent(slot) && !(IsSilentByRecord(slot) && (isDoubtful || TakesOtherDevices(slot)));
  });
}

std::vector<AffectedObject> DoubtfulUsages(const MachineFacts& facts) {
  if (!IsUsageDoubtful(facts.machine)) return {};
  return ContradictedSlots(facts.machine, [](const MachineSlot& slot) {
    return IsSilentByRecord(slot) && !TakesOtherDevices(slot);
  });
}

/// A card in an inner slot, as on a riser, answers for the outer one.
bool HoldsFunctions(const MachineSlot& slot) {
  return !slot.functions.empty() || !slot.innerSlots.empty();
}

/// Firmware does not learn of cards that are added while the machine runs.
bool MayBeAdded(const MachineSlot& slot) {
  return slot.usage == kUsageAvailable && slot.conflicts.size() == 1 &&
         (slot.portHotPlug == true || slot.hotPlug == true);
}

std::vector<AffectedObject> ContradictedByCards(const MachineFacts& facts) {
  return ContradictedSlots(facts.machine, [](const MachineSlot& slot) {
    return slot.state == SlotState::kOccupied && HoldsFunctions(slot) && !MayBeAdded(slot);
  });
}

std::vector<AffectedObject> WithoutPower(const MachineFacts& facts) {
  return ContradictedSlots(facts.machine, [](const MachineSlot& slot) {
    return slot.state == SlotState::kOccupied && slot.powerOn == false && !HoldsFunctions(slot);
  });
}

std::vector<AffectedObject> WithPowerFault(const MachineFacts& facts) {
  std::vector<AffectedObject> objects;
  for (const MachineSlot& slot : facts.machine.slots) {
    if (slot.powerFault == true) objects.push_back(ObjectOf(slot, ""));
  }
  return objects;
}

/// Names of slots are unique in the model: a number in parentheses tells the later of equal ones
/// apart. Returns the name without it.
std::string WithoutNumber(const std::string& name) {
  const std::size_t open = name.rfind(" (");
  if (open == std::string::npos || !name.ends_with(')')) return name;
  unsigned number = 0;
  const char* const end = name.data() + name.size() - 1;
  const auto [stop, error] = std::from_chars(name.data() + open + 2, end, number);
  return error == std::errc() && stop == end && number > 1 ? name.substr(0, open) : name;
}

std::string PositionText(const MachineSlot& slot) {
  const std::string id = slot.id ? fmt::format("slot ID {}", *slot.id) : "";
  const std::string address = slot.firmwareAddress.empty() ? "" : "at " + slot.firmwareAddress;
  return id.empty() || address.empty() ? id + address : id + ", " + address;
}

std::vector<AffectedObject> WithRepeatedName(const MachineFacts& facts) {
  std::map<std::string, std::vector<const MachineSlot*>> slotsByName;
  for (const MachineSlot& slot : facts.machine.slots) {
    if (slot.recordHandle && !NameIn(WithoutNumber(slot.name)).empty()) {
      slotsByName[WithoutNumber(slot.name)].push_back(&slot);
    }
  }
  std::vector<AffectedObject> objects;
  for (const auto& [name, slots] : slotsByName) {
    // Without the first of them, the number is a part of the firmware's name.
    const bool isRepeated = slots.size() > 1 && slots.front()->name == name;
    if (!isRepeated) continue;
    for (const MachineSlot* slot : slots) objects.push_back(ObjectOf(*slot, PositionText(*slot)));
  }
  return objects;
}

/// The first function of each card behind a shared port.
FunctionList CardsAt(const SharedPort& shared, const MachineModel& machine) {
  FunctionList cards = machine.FunctionsOf(shared.functions);
  std::erase_if(cards, [](const MachineFunction* function) {
    return function->IsBridge() || function->physicalFunction ||
           function->address.address.function != 0;
  });
  return cards;
}

std::vector<AffectedObject> WithSharedPort(const MachineFacts& facts) {
  std::vector<AffectedObject> objects;
  for (const SharedPort& shared : facts.machine.shared) {
    const std::string slots = fmt::format("in {}", fmt::join(shared.slots, " or "));
    for (const MachineFunction* card : CardsAt(shared, facts.machine)) {
      objects.push_back(ObjectOf(*card, facts.machine, slots));
    }
  }
  return objects;
}

const std::vector<MachineCheck> kSlotChecks = {
    {"slot-power-fault", Severity::kError, "The power controllers of these slots report a fault.",
     "Take the card out and look at it and at its power cable before you turn the slot on again.",
     &WithPowerFault},
    {"slot-silent", Severity::kWarning,
     "A card should be in these slots, and nothing answers there.",
     "Look at the card first: it may have failed, or is not seated well. If it was taken out, the "
     "next restart tells the firmware.",
     &SilentSlots},
    {"slot-usage-doubtful", Severity::kNote,
     "The firmware calls all slots in use, and most of them are empty.",
     "Do not trust the usage in the slot records; look for a firmware update.", &DoubtfulUsages},
    {"slot-contradicted", Severity::kNote,
     "The records of these slots and the cards contradict each other.",
     "Trust the card that answers; look for a firmware update.", &ContradictedByCards},
    {"slot-without-power", Severity::kNote, "There are cards in these slots, which are turned off.",
     "Turn the slot on to use the card: write 1 to its file \"power\" in /sys/bus/pci/slots.",
     &WithoutPower},
    {"slot-name-repeated", Severity::kNote, "Several slots have the same name.",
     "Find the slot by its ID or address before you pull a card.", &WithRepeatedName},
    {"slot-port-shared", Severity::kNote,
     "The firmware gives several slots the same port, so it is not known in which of them these "
     "cards are.",
     "Note the slot on the card before you pull another; look for a firmware update.",
     &WithSharedPort},
};

}  // namespace

const std::vector<MachineCheck>& SlotChecks() { return kSlotChecks; }

}  // namespace pciinfo
