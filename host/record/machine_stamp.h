// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "host/model/machine_ids.h"

namespace pciinfo {

/// Which machine a line of JSON is about, and when it was so. What is not known is empty.
struct MachineStamp {
  std::string systemName;
  MachineIds ids;
  std::string collected;  ///< in UTC: "2026-01-31T23:59:59Z"
};

/// Returns it as an object, with which lines begin; docs/formats.md describes it.
nlohmann::ordered_json StampJson(const MachineStamp& stamp);

/// Returns the members of that object as text, each with a comma after it.
std::string StampText(const MachineStamp& stamp);

}  // namespace pciinfo
