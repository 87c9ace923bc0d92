// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/machine/machine_model.h"

namespace pciinfo {

/// The names of the columns of `devices`.
std::vector<std::string> DeviceColumns();

/// Writes every PCI function, sorted by address, one per line. `columns` are names of
/// DeviceColumns; if there are none, those that tell something about this machine are shown.
void WriteDevicesTable(Output& output, const MachineModel& machine,
                       const std::vector<std::string>& columns, const Terminal& terminal);

/// Writes the same as JSON, whatever the columns; docs/formats.md describes it.
void WriteDevicesJson(Output& output, const MachineModel& machine);

}  // namespace pciinfo
