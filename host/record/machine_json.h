// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/console/output.h"
#include "host/machine/machine_model.h"

namespace pciinfo {

// The shapes are described in docs/formats.md.

/// Returns a function as JSON.
nlohmann::ordered_json FunctionJson(const MachineFunction& function, const MachineModel& machine);

/// Returns a slot with its functions as JSON.
nlohmann::ordered_json SlotJson(const MachineSlot& slot, const MachineModel& machine);

/// Returns the members of `slots` as JSON: slots, shared ports, what is outside slots or unknown,
/// and contradictions.
nlohmann::ordered_json MachineJson(const MachineModel& machine);

/// Writes the members of an object as JSON with a line for each element of an array.
void WriteJsonLines(Output& output, const nlohmann::ordered_json& object);

}  // namespace pciinfo
