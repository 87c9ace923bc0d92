// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/machine/machine_model.h"
#include "host/report/markup.h"

namespace pciinfo {

// Rows have the ids "s0", "s1" ... and "f0", "f1" ...: the places of slots and functions in the
// machine. A cell belongs to the heading of its column, which the script of the page repeats.

void WriteSlotTable(Markup& markup, const MachineModel& machine);

void WriteFunctionTable(Markup& markup, const MachineModel& machine);

}  // namespace pciinfo
