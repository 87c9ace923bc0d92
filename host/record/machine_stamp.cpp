// SPDX-License-Identifier: Apache-2.0
#include "host/record/machine_stamp.h"

#include <nlohmann/json.hpp>

#include "host/console/safe_json.h"
#include "host/console/utf8.h"

namespace pciinfo {

nlohmann::ordered_json StampJson(const MachineStamp& stamp) {
  nlohmann::ordered_json object = {{"system", ToUtf8(stamp.systemName)}};
  if (!stamp.ids.systemUuid.empty()) object["systemUUID"] = stamp.ids.systemUuid;
  if (!stamp.ids.machineId.empty()) object["machineID"] = stamp.ids.machineId;
  if (!stamp.collected.empty()) object["collected"] = stamp.collected;
  return object;
}

std::string StampText(const MachineStamp& stamp) {
  const std::string object = SafeJson(StampJson(stamp).dump());
  return object.substr(1, object.size() - 2) + ",";
}

}  // namespace pciinfo
