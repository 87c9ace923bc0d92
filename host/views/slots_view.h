// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/machine/machine_model.h"
#include "host/record/machine_stamp.h"

namespace pciinfo {

/// Which slots to show.
enum class SlotChoice { kAll, kFree, kOccupied };

/// Makes a machine of the chosen slots and what is in them; kAll keeps everything. Slots of which
/// the state is not known are neither free nor occupied.
MachineModel ChosenSlots(MachineModel machine, SlotChoice choice);

/// The names of the columns of `slots`.
std::vector<std::string> SlotColumns();

/// Writes the slots with their cards, shared ports, slots without a name, the cards outside slots,
/// and what is not known or contradicts itself. `columns` are names of SlotColumns; none: all that
/// fit.
void WriteSlotsTable(Output& output, const MachineModel& machine,
                     const std::vector<std::string>& columns, const Terminal& terminal);

// The same in other formats, which docs/formats.md describes. JSON Lines and CSV have the slots
// only, CSV a line for each function in a slot.

void WriteSlotsJson(Output& output, const MachineModel& machine);
void WriteSlotsJsonLines(Output& output, const MachineModel& machine, const MachineStamp& stamp);
void WriteSlotsYaml(Output& output, const MachineModel& machine);
void WriteSlotsCsv(Output& output, const MachineModel& machine,
                   const std::vector<std::string>& columns);

}  // namespace pciinfo
