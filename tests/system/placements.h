// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>

/// Returns where the second plug-in says that functions are, in the form of "topology" in a machine
/// file:
///   - "slots": by its name each slot that is not empty or is of a firmware's record, with
///   "source",
///     "state", and where there are any "functions" with their "certainty", "outer" and
///     "conflicts";
///   - "emptySlots": the number of the other slots;
///   - "elsewhere": the functions in no slot, by their place.
/// `instances` is the output of `pciinfo instances VTQ_PCIFunction ... --format json`.
nlohmann::json ReadPlacements(const nlohmann::json& instances);
