// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>

namespace pciinfo {

/// The definitions of the JSON Schema for the answers of `fleet --format json` and for their lines
/// in JSON Lines, by name. "sql" is not among them: its columns are those of the query.
nlohmann::ordered_json FleetDefinitions();

}  // namespace pciinfo
