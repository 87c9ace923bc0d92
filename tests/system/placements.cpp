// SPDX-License-Identifier: Apache-2.0
#include "tests/system/placements.h"

#include <map>
#include <set>
#include <string>

namespace {

using nlohmann::json;

/// The value of the only key of an object path.
std::string KeyOf(const std::string& path) {
  const std::size_t first = path.find('"') + 1;
  return path.substr(first, path.rfind('"') - first);
}

/// Functions are sorted by address, also those of one slot.
void AddFunction(const json& properties, json* slot) {
  (*slot)["functions"].push_back(KeyOf(properties.at("Dependent")));
  const json& certainty = properties.at("Certainty");
  const bool isSame = !slot->contains("certainty") || slot->at("certainty") == certainty;
  (*slot)["certainty"] = isSame ? certainty : json("mixed");
}

json TellSlot(const json& properties) {
  json slot{{"source", properties.at("Source")}, {"state", properties.at("State")}};
  if (properties.contains("OuterSlot")) slot["outer"] = properties.at("OuterSlot");
  if (properties.contains("Conflicts")) slot["conflicts"] = properties.at("Conflicts");
  return slot;
}

}  // namespace

json ReadPlacements(const json& instances) {
  json slots = json::object();
  json elsewhere = json::object();
  std::set<std::string> held;
  for (const json& instance : instances.at("instances")) {
    const json& properties = instance.at("properties");
    if (instance.at("class") == "VTQ_PCISlot") slots[properties.at("Name")] = TellSlot(properties);
    if (instance.at("class") != "VTQ_PCIFunctionInSlot") continue;
    AddFunction(properties, &slots.at(KeyOf(properties.at("Antecedent"))));
    held.insert(KeyOf(properties.at("Dependent")));
  }
  for (const json& instance : instances.at("instances")) {
    if (instance.at("class") != "VTQ_PCIFunction") continue;
    const json& properties = instance.at("properties");
    if (held.contains(properties.at("Address"))) continue;
    elsewhere[properties.at("Place")].push_back(properties.at("Address"));
  }
  const std::size_t all = slots.size();
  for (auto slot = slots.begin(); slot != slots.end();) {
    const bool isPlain = slot->at("state") == "empty" && slot->at("source") != "SMBIOS record";
    slot = isPlain ? slots.erase(slot) : std::next(slot);
  }
  const std::size_t empty = all - slots.size();
  return {{"slots", std::move(slots)}, {"emptySlots", empty}, {"elsewhere", std::move(elsewhere)}};
}
