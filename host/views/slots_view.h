// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/machine/machine_model.h"

namespace pciinfo {

/// Which slots to show.
enum class SlotChoice { kAll, kFree, kOccupied };

/// Makes a machine of the chosen slots and what is in them; kAll keeps everything. Slots of which
/// the state is not known are neither free nor occupied.
MachineModel ChosenSlots(const MachineModel& machine, SlotChoice choice);

/// Writes the slots with their cards, shared ports, slots without a name, the cards outside slots,
/// and what is not known or contradicts itself.
void WriteSlotsTable(Output& output, const MachineModel& machine, const Terminal& terminal);

/// Writes the same as JSON, one slot or function per line. docs/formats.md describes it.
void WriteSlotsJson(Output& output, const MachineModel& machine);

}  // namespace pciinfo
