// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "host/machine/machine_model.h"
#include "host/model/filter.h"

namespace pciinfo {

/// Whether `name` stands for a slot: its name or kernel slot in any case, or its ID.
bool IsNamed(const MachineSlot& slot, const std::string& name);

/// Whether the filter keeps a function. A function behind a shared port matches each of the port's
/// slots, since it may sit in any of them.
bool Keeps(const Filter& filter, const MachineModel& machine, const MachineFunction& function);

/// Makes a machine of some functions, of the slots and shared ports that hold one of them, and of
/// the slots that are kept for their own sake.
MachineModel PartOf(const MachineModel& machine,
                    const std::function<bool(const MachineFunction&)>& keepsFunction,
                    const std::function<bool(const MachineSlot&)>& keepsSlot);

/// Makes a machine of the functions that match the filter, and of the slots and shared ports that
/// match or that hold one of those functions.
MachineModel KeptOf(MachineModel machine, const Filter& filter);

}  // namespace pciinfo
