// SPDX-License-Identifier: Apache-2.0
#include "host/machine/machine_filter.h"

#include <algorithm>

#include "host/model/slot_name.h"

namespace pciinfo {
namespace {

/// The function in the terms that a filter tests.
PciFunction InFilterTerms(const MachineFunction& function) {
  PciFunction tested;
  tested.kind = function.IsBridge() ? "bridge" : "device";
  tested.domain = function.address.domain;
  tested.address = function.address.address;
  tested.vendorId = function.vendorId;
  tested.deviceId = function.deviceId;
  tested.subsystemVendorId = function.subsystemVendorId;
  tested.subsystemId = function.subsystemId;
  tested.classCode = function.baseClass;
  tested.subclass = function.subclass;
  tested.programmingInterface = function.programmingInterface;
  return tested;
}

Slot InFilterTerms(const MachineSlot& slot) {
  Slot tested;
  tested.tag = slot.name;
  tested.id = slot.id;
  if (!slot.kernelSlot.empty()) tested.designation = slot.kernelSlot;
  return tested;
}

/// The slots in one of which a function sits; empty if it sits in none that is known.
std::vector<const MachineSlot*> SlotsOf(const MachineModel& machine,
                                        const MachineFunction& function) {
  if (function.slot) return {&machine.slots[*function.slot]};
  std::vector<const MachineSlot*> slots;
  if (!function.sharedPort) return slots;
  for (const std::size_t place : machine.shared[*function.sharedPort].slotPlaces) {
    slots.push_back(&machine.slots[place]);
  }
  return slots;
}

/// The places of the kept functions in the result; nothing for the others.
using NewPlaces = std::vector<std::optional<std::size_t>>;

std::vector<std::size_t> Moved(const std::vector<std::size_t>& places, const NewPlaces& to) {
  std::vector<std::size_t> moved;
  for (const std::size_t place : places) {
    if (to[place]) moved.push_back(*to[place]);
  }
  return moved;
}

NewPlaces KeepFunctions(const MachineModel& machine,
                        const std::function<bool(const MachineFunction&)>& keeps,
                        MachineModel& kept) {
  NewPlaces to;
  for (const MachineFunction& function : machine.functions) {
    const bool isKept = keeps(function);
    to.push_back(isKept ? std::optional(kept.functions.size()) : std::nullopt);
    if (!isKept) continue;
    kept.functions.push_back(function);
    kept.functions.back().slot.reset();
  }
  return to;
}

void KeepSlots(const MachineModel& machine, const std::function<bool(const MachineSlot&)>& keeps,
               const NewPlaces& to, MachineModel& kept) {
  for (const MachineSlot& slot : machine.slots) {
    std::vector<std::size_t> functions = Moved(slot.functions, to);
    if (functions.empty() && !keeps(slot)) continue;
    for (const std::size_t function : functions) kept.functions[function].slot = kept.slots.size();
    kept.slots.push_back(slot);
    kept.slots.back().functions = std::move(functions);
  }
}

void KeepShared(const MachineModel& machine, const NewPlaces& to, MachineModel& kept) {
  for (const SharedPort& shared : machine.shared) {
    std::vector<std::size_t> functions = Moved(shared.functions, to);
    if (functions.empty()) continue;
    kept.shared.push_back(shared);
    kept.shared.back().functions = std::move(functions);
  }
}

}  // namespace

bool IsNamed(const MachineSlot& slot, const std::string& name) {
  return IsNamed(InFilterTerms(slot), name);
}

bool Keeps(const Filter& filter, const MachineModel& machine, const MachineFunction& function) {
  const PciFunction tested = InFilterTerms(function);
  const auto slots = SlotsOf(machine, function);
  if (slots.empty()) return filter.Keeps(tested, nullptr);
  return std::any_of(slots.begin(), slots.end(), [&](const MachineSlot* slot) {
    const Slot testedSlot = InFilterTerms(*slot);
    return filter.Keeps(tested, &testedSlot);
  });
}

MachineModel PartOf(const MachineModel& machine,
                    const std::function<bool(const MachineFunction&)>& keepsFunction,
                    const std::function<bool(const MachineSlot&)>& keepsSlot) {
  MachineModel kept;
  const NewPlaces to = KeepFunctions(machine, keepsFunction, kept);
  KeepSlots(machine, keepsSlot, to, kept);
  KeepShared(machine, to, kept);
  kept.LinkParts();
  return kept;
}

MachineModel KeptOf(MachineModel machine, const Filter& filter) {
  if (filter.IsEmpty()) return machine;
  return PartOf(
      machine, [&](const MachineFunction& function) { return Keeps(filter, machine, function); },
      [&](const MachineSlot& slot) { return filter.Keeps(InFilterTerms(slot)); });
}

}  // namespace pciinfo
