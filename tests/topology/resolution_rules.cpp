// SPDX-License-Identifier: Apache-2.0
#include "tests/topology/resolution_rules.h"

#include <set>
#include <vector>

namespace topology {
namespace {

/// How often each function is in a slot or a shared place.
std::vector<int> CountsOf(const Machine& machine, const Resolution& resolution) {
  std::vector<int> counts(machine.functions.size());
  for (const Occupant& occupant : resolution.occupants) ++counts.at(occupant.function);
  for (const SharedPlace& shared : resolution.shared) {
    for (const std::size_t function : shared.functions) ++counts.at(function);
  }
  return counts;
}

std::string BrokenByPlaces(const Machine& machine, const Resolution& resolution) {
  if (resolution.places.size() != machine.functions.size()) return "a function has no place";
  const std::vector<int> counts = CountsOf(machine, resolution);
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const std::string name = ToText(machine.functions[i].address);
    const Place place = resolution.places[i].place;
    const bool isHeld =
        place == Place::kSlot || place == Place::kShared || place == Place::kUnnamedSlot;
    if (counts[i] > 1) return name + " is in several places";
    if ((counts[i] == 1) != isHeld) return name + " is not where its place says";
    if (resolution.places[i].reason.empty()) return name + " has a place without a reason";
    if (place == Place::kOnBoard && !machine.noRecordsBecause.empty()) {
      return name + " is on board, and the slots could not be read";
    }
  }
  return "";
}

bool IsNamedIn(const std::string& evidence, const char* source) {
  return evidence.find(source) != std::string::npos;
}

std::string BrokenByEvidence(const Resolution& resolution) {
  for (const Occupant& occupant : resolution.occupants) {
    const Slot& slot = resolution.slots.at(occupant.slot);
    if (slot.targets.empty()) return slot.name + " leads nowhere and holds a function";
    if (occupant.certainty != Certainty::kCertain) continue;
    if (!IsNamedIn(occupant.evidence, "SMBIOS record 0x") &&
        !IsNamedIn(occupant.evidence, "kernel slot ")) {
      return "certain without a source: " + occupant.evidence;
    }
  }
  return "";
}

std::string BrokenBySlots(const Resolution& resolution) {
  std::set<std::string> names;
  for (const Slot& slot : resolution.slots) {
    if (slot.name.empty() || !names.insert(slot.name).second) return "a name is not unique";
    if (slot.targets.empty() == slot.noTargetBecause.empty()) {
      return slot.name + " has both or neither of a target and a reason for none";
    }
    std::set<const Slot*> outer{&slot};
    for (auto at = slot.outer; at; at = resolution.slots.at(*at).outer) {
      if (!outer.insert(&resolution.slots.at(*at)).second) return slot.name + " holds itself";
    }
  }
  for (const SharedPlace& shared : resolution.shared) {
    if (shared.slots.size() < 2) return "a place is shared by one slot";
  }
  return "";
}

}  // namespace

std::string BrokenRule(const Machine& machine, const Resolution& resolution) {
  for (const std::string& broken : {BrokenByPlaces(machine, resolution),
                                    BrokenByEvidence(resolution), BrokenBySlots(resolution)}) {
    if (!broken.empty()) return broken;
  }
  return "";
}

}  // namespace topology
