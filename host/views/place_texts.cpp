// SPDX-License-Identifier: Apache-2.0
#include "host/views/place_texts.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>

#include "host/console/text.h"
#include "host/machine/names.h"

namespace pciinfo {
namespace {

// Usage of a slot record (DSP0134, 7.10.3).
constexpr unsigned kAvailable = 3;
constexpr unsigned kInUse = 4;

std::string NamesText(const std::vector<std::string>& names) {
  constexpr std::size_t kMost = 8;
  if (names.size() <= kMost) return fmt::format("{}", fmt::join(names, ", "));
  return fmt::format("{} and {} more", fmt::join(names.begin(), names.begin() + kMost - 1, ", "),
                     names.size() - kMost + 1);
}

std::vector<std::string> PrintableNames(const std::vector<std::string>& names) {
  std::vector<std::string> printable;
  printable.reserve(names.size());
  for (const std::string& name : names) printable.push_back(Printable(name));
  return printable;
}

std::string FirmwareClaim(const MachineSlot& slot) {
  if (slot.usage == kInUse) return "; the firmware says in use";
  return slot.usage == kAvailable ? "; the firmware says available" : "";
}

std::vector<std::string> InnerSlots(const MachineSlot& slot, const MachineModel& machine) {
  std::vector<std::string> names;
  for (const std::size_t inner : slot.innerSlots) {
    names.push_back(NameOf(machine.slots[inner], machine));
  }
  return names;
}

std::string OneOfSlots(const MachineFunction& function, const MachineModel& machine) {
  if (!function.sharedPort) return "one of several slots";
  return fmt::format("{}",
                     fmt::join(PrintableNames(machine.shared[*function.sharedPort].slots), " or "));
}

/// Reasons name the record that they are about; without it, equal ones can be grouped.
std::string WithoutRecord(const std::string& reason) {
  constexpr std::string_view kRecord = "SMBIOS record ";
  if (!reason.starts_with(kRecord)) return reason;
  const std::size_t end = reason.find_first_of(" ,", kRecord.size());
  return end == std::string::npos ? reason : "the SMBIOS record" + reason.substr(end);
}

}  // namespace

std::string Count(std::size_t count, const char* one, const char* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string StateText(const MachineSlot& slot) {
  switch (slot.state) {
    case SlotState::kOccupied:
      return "in use";
    case SlotState::kEmpty:
      return "empty";
    case SlotState::kUnknown:
      break;
  }
  return "unknown";
}

std::string NameOf(const MachineSlot& slot, const MachineModel& machine) {
  if (!slot.IsNamed() && !slot.ports.empty()) {
    return fmt::format("(port {})", ShortAddress(slot.ports.front(), machine));
  }
  std::string name = NameIn(slot.name);
  if (!name.empty()) return name;
  return slot.id ? fmt::format("slot ID {}", *slot.id) : "without a name";
}

std::string PlaceText(const MachineFunction& function, const MachineModel& machine) {
  switch (function.place) {
    case FunctionPlace::kSlot:
    case FunctionPlace::kUnnamedSlot:
      return function.slot ? NameOf(machine.slots[*function.slot], machine) : "unknown";
    case FunctionPlace::kSharedPort:
      return OneOfSlots(function, machine);
    case FunctionPlace::kOnBoard:
      return "on board";
    case FunctionPlace::kUnknown:
      break;
  }
  return "unknown";
}

std::string ShortAddress(const std::string& address, const MachineModel& machine) {
  const auto parsed = ParseDomainAddress(address);
  if (!parsed) return Printable(address);
  return AddressText(*parsed, machine.HasDomains() || parsed->domain != 0);
}

std::string InsteadOfCards(const MachineSlot& slot, const MachineModel& machine) {
  const std::vector<std::string> inner = InnerSlots(slot, machine);
  if (!inner.empty()) return "holds " + NamesText(inner);
  const SharedPort* const shared = slot.sharedPort ? &machine.shared[*slot.sharedPort] : nullptr;
  if (shared != nullptr && !shared->functions.empty()) {
    return fmt::format("unknown: port {} leads to {} slots", ShortAddress(shared->port, machine),
                       shared->slots.size());
  }
  return slot.state == SlotState::kUnknown ? "unknown" + FirmwareClaim(slot) : "";
}

std::vector<std::string> GroupedByReason(
    const std::vector<std::pair<std::string, std::string>>& namesAndReasons) {
  std::vector<std::pair<std::string, std::vector<std::string>>> groups;
  std::map<std::string, std::size_t> places;  // in `groups`, by reason
  for (const auto& [name, reason] : namesAndReasons) {
    const auto [place, isNew] = places.try_emplace(reason, groups.size());
    if (isNew) groups.push_back({reason, {}});
    groups[place->second].second.push_back(name);
  }
  std::vector<std::string> lines;
  lines.reserve(groups.size());
  for (const auto& [reason, names] : groups) {
    lines.push_back(fmt::format("{}: {}", NamesText(names), reason));
  }
  return lines;
}

std::vector<std::string> Unmatched(const MachineModel& machine) {
  std::vector<std::pair<std::string, std::string>> reasons;
  for (const MachineSlot& slot : machine.slots) {
    if (slot.noPortBecause.empty() || !slot.ports.empty()) continue;
    reasons.emplace_back(NameOf(slot, machine), Printable(WithoutRecord(slot.noPortBecause)));
  }
  return GroupedByReason(reasons);
}

std::vector<std::string> Contradictions(const MachineModel& machine) {
  std::vector<std::pair<std::string, std::string>> reasons;
  for (const MachineSlot& slot : machine.slots) {
    for (const std::string& text : slot.conflicts) {
      reasons.emplace_back(NameOf(slot, machine), Printable(text));
    }
  }
  return GroupedByReason(reasons);
}

std::string SharedTitle(const SharedPort& shared, const MachineModel& machine) {
  return fmt::format("In {}, which share port {}", fmt::join(PrintableNames(shared.slots), " or "),
                     ShortAddress(shared.port, machine));
}

}  // namespace pciinfo
