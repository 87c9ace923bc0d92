// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/machine/machine_model.h"
#include "host/report/markup.h"

namespace pciinfo {

// Rows have the ids "PREFIXs0", "PREFIXs1" ... and "PREFIXf0" ...: the places of slots and
// functions in the machine. A cell belongs to the heading of its column, which the script of the
// page repeats.

void WriteSlotTable(Markup& markup, const MachineModel& machine, const std::string& prefix);

void WriteFunctionTable(Markup& markup, const MachineModel& machine, const std::string& prefix);

}  // namespace pciinfo
