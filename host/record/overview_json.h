// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/machine/machine_model.h"
#include "host/model/machine_identity.h"

namespace pciinfo {

/// The data of the overview.
struct Overview {
  MachineIdentity identity;
  std::string systemName;
  std::string filter;  ///< as the user wrote it; empty: everything is shown
  MachineModel machine;
  std::vector<std::string> notRead;  ///< what could not be read and why, one sentence each
};

/// How many functions and slots a machine has.
struct MachineCounts {
  std::size_t functions = 0;
  std::size_t bridges = 0;
  std::size_t slots = 0;  ///< with a name
  std::size_t inUse = 0;
  std::size_t matched = 0;  ///< slots with known functions
};

MachineCounts CountAll(const MachineModel& machine);

/// Returns the overview as JSON; docs/formats.md describes it.
nlohmann::ordered_json OverviewJson(const Overview& overview);

}  // namespace pciinfo
