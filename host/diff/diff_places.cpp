// SPDX-License-Identifier: Apache-2.0
#include "host/diff/diff_places.h"

#include <fmt/format.h>

#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

std::string PortText(const DomainAddress& port, const MachineModel& machine) {
  return AddressText(port, machine.HasDomains());
}

}  // namespace

const MachineSlot* NamedSlotOf(const MachineFunction& function, const MachineModel& machine) {
  if (!function.slot || !machine.slots[*function.slot].IsNamed()) return nullptr;
  return &machine.slots[*function.slot];
}

std::string WhereText(const MachineFunction& function, const MachineModel& machine) {
  switch (function.place) {
    case FunctionPlace::kOnBoard:
      return " on board";
    case FunctionPlace::kSharedPort:
    case FunctionPlace::kSlot:
      return " in " + PlaceText(function, machine);
    case FunctionPlace::kUnnamedSlot:
    case FunctionPlace::kUnknown:
      break;
  }
  if (!function.parentPort) return "";
  return " behind port " + PortText(*function.parentPort, machine);
}

std::optional<FactChange> PlaceComparison::Compare(const StateFunction& old,
                                                   const StateFunction& now) {
  const MachineSlot* const oldSlot = NamedSlotOf(old.Get(), before_.model);
  const MachineSlot* const newSlot = NamedSlotOf(now.Get(), after_.model);
  if (oldSlot != nullptr && newSlot != nullptr) {
    if (pairs_.slots.toBefore[*now.Get().slot] == old.Get().slot) return std::nullopt;
    return OtherSlot(old.Get(), now.Get());
  }
  auto change = ComparePorts(old.Get(), now.Get());
  if (change || (oldSlot == nullptr) == (newSlot == nullptr)) return change;
  const auto side = oldSlot == nullptr ? DiffSideName::kBefore : DiffSideName::kAfter;
  unknown_.Add(side, {"Slot", "slot", std::nullopt}, "function");
  return std::nullopt;
}

/// A card that is behind the same port has not moved: the two sides name its slot differently.
FactChange PlaceComparison::OtherSlot(const MachineFunction& old,
                                      const MachineFunction& now) const {
  const std::string from = NameOf(before_.model.slots[*old.slot], before_.model);
  const std::string to = NameOf(after_.model.slots[*now.slot], after_.model);
  const MachineFunction* const parent = NewParent(old);
  const bool isSamePort = parent != nullptr && now.parentPort == parent->address &&
                          old.address.address.device == now.address.address.device;
  if (!isSamePort) return {"Slot", from, to, fmt::format("moved from {} to {}", from, to)};
  return {"Place", from, to,
          fmt::format("in {}, was in {}, although the port is the same", to, from)};
}

/// The new port that corresponds to the one which led to an old function.
const MachineFunction* PlaceComparison::NewParent(const MachineFunction& old) const {
  const auto* const parent = old.parentPort ? before_.model.Find(*old.parentPort) : nullptr;
  if (parent == nullptr) return nullptr;
  const auto place = static_cast<std::size_t>(parent - before_.model.functions.data());
  const auto partner = pairs_.functions.toAfter[place];
  return partner ? &after_.model.functions[*partner] : nullptr;
}

std::optional<FactChange> PlaceComparison::ComparePorts(const MachineFunction& old,
                                                        const MachineFunction& now) {
  const MachineFunction* const parent = NewParent(old);
  if (parent == nullptr || !now.parentPort || parent->address == *now.parentPort) {
    return std::nullopt;
  }
  const std::string from = PortText(*old.parentPort, before_.model);
  const std::string to = PortText(*now.parentPort, after_.model);
  return FactChange{"Port", from, to, fmt::format("behind port {}, was behind port {}", to, from)};
}

}  // namespace pciinfo
