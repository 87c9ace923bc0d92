// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/record/machine_line.h"

namespace pciinfo {

/// Returns a machine as Redfish resources (DSP0268) in one document: a Chassis with everything that
/// it links to in its place, as a service answers a request with "$expand=*". docs/formats.md
/// describes it.
nlohmann::ordered_json RedfishJson(const CollectedMachine& machine);

}  // namespace pciinfo
