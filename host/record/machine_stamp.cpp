// SPDX-License-Identifier: Apache-2.0
#include "host/record/machine_stamp.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "host/console/safe_json.h"
#include "host/console/utf8.h"

namespace pciinfo {

namespace {

std::vector<std::pair<const char*, std::string>> MembersOf(const MachineStamp& stamp) {
  std::vector<std::pair<const char*, std::string>> members;
  members.emplace_back("system", ToUtf8(stamp.systemName));
  if (!stamp.ids.systemUuid.empty()) members.emplace_back("systemUUID", stamp.ids.systemUuid);
  if (!stamp.ids.machineId.empty()) members.emplace_back("machineID", stamp.ids.machineId);
  if (!stamp.collected.empty()) members.emplace_back("collected", stamp.collected);
  return members;
}

}  // namespace

nlohmann::ordered_json StampJson(const MachineStamp& stamp) {
  nlohmann::ordered_json object;
  for (const auto& [name, text] : MembersOf(stamp)) object[name] = text;
  return object;
}

std::string StampText(const MachineStamp& stamp) {
  std::string members;
  // The destructor of a JSON object allocates memory, and so ends the process where there is none.
  // That of a JSON string does not.
  for (const auto& [name, text] : MembersOf(stamp)) {
    members += fmt::format("\"{}\":{},", name, SafeJson(nlohmann::json(text).dump()));
  }
  return members;
}

}  // namespace pciinfo
