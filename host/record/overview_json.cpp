// SPDX-License-Identifier: Apache-2.0
#include "host/record/overview_json.h"

#include <nlohmann/json.hpp>

#include "host/console/utf8.h"
#include "host/machine/names.h"
#include "host/record/machine_json.h"

namespace pciinfo {
namespace {

/// Where the hardware does not tell, the firmware's word is taken.
bool IsInUse(const MachineSlot& slot) {
  constexpr unsigned kInUseCode = 4;  // DSP0134, 7.10.3
  if (slot.state != SlotState::kUnknown) return slot.state == SlotState::kOccupied;
  return slot.usage == kInUseCode;
}

nlohmann::ordered_json IdentityJson(const MachineIdentity& identity) {
  nlohmann::ordered_json machine = nlohmann::ordered_json::object();
  const auto add = [&machine](const char* name, const std::string& text) {
    const std::string fit = NameIn(text);
    if (!fit.empty()) machine[name] = ToUtf8(fit);
  };
  add("maker", identity.maker);
  add("product", identity.product);
  add("boardMaker", identity.boardMaker);
  add("boardProduct", identity.boardProduct);
  add("boardVersion", identity.boardVersion);
  add("biosMaker", identity.biosMaker);
  add("biosVersion", identity.biosVersion);
  add("biosDate", identity.biosDate);
  return machine;
}

nlohmann::ordered_json CountsJson(const MachineCounts& counts) {
  return {{"functions", counts.functions},
          {"bridges", counts.bridges},
          {"slots", counts.slots},
          {"inUse", counts.inUse},
          {"matched", counts.matched}};
}

}  // namespace

MachineCounts CountAll(const MachineModel& machine) {
  MachineCounts counts;
  counts.functions = machine.functions.size();
  for (const MachineFunction& function : machine.functions) {
    if (function.IsBridge()) ++counts.bridges;
  }
  for (const MachineSlot& slot : machine.slots) {
    if (!slot.IsNamed()) continue;
    ++counts.slots;
    if (IsInUse(slot)) ++counts.inUse;
    if (!slot.functions.empty()) ++counts.matched;
  }
  return counts;
}

nlohmann::ordered_json OverviewJson(const Overview& overview) {
  nlohmann::ordered_json object = {{"system", ToUtf8(overview.systemName)}};
  if (!overview.filter.empty()) object["filter"] = ToUtf8(overview.filter);
  object["machine"] = IdentityJson(overview.identity);
  object["counts"] = CountsJson(CountAll(overview.machine));
  object.update(MachineJson(overview.machine));
  object["notRead"] = nlohmann::ordered_json::array();
  for (const std::string& line : overview.notRead) object["notRead"].push_back(ToUtf8(line));
  return object;
}

}  // namespace pciinfo
