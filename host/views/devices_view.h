// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/machine/machine_model.h"
#include "host/record/machine_stamp.h"

namespace pciinfo {

/// The names of the columns of `devices`.
std::vector<std::string> DeviceColumns();

/// Writes every PCI function, sorted by address, one per line. `columns` are names of
/// DeviceColumns; if there are none, those that tell something about this machine are shown.
void WriteDevicesTable(Output& output, const MachineModel& machine,
                       const std::vector<std::string>& columns, const Terminal& terminal);

// The same in other formats, which docs/formats.md describes.

void WriteDevicesJson(Output& output, const MachineModel& machine);
void WriteDevicesJsonLines(Output& output, const MachineModel& machine, const MachineStamp& stamp);
void WriteDevicesYaml(Output& output, const MachineModel& machine);
/// Without names of `columns`, writes all of them, so that every machine has the same.
void WriteDevicesCsv(Output& output, const MachineModel& machine,
                     const std::vector<std::string>& columns);

}  // namespace pciinfo
