// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/record/machine_line.h"

namespace pciinfo {

/// Returns a machine as rows for the bulk import of NetBox: an object with an array of rows for
/// each type of object, in the order in which they are to be imported. docs/formats.md describes
/// it.
nlohmann::ordered_json NetBoxJson(const CollectedMachine& machine);

}  // namespace pciinfo
