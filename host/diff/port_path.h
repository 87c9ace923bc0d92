// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/machine/machine_model.h"

namespace pciinfo {

/// Returns "1c.4", the numbers of device and function.
std::string NumberOnBus(const PciAddress& address);

/// Returns for each function of the machine the way to it from its root bus, as in
/// "0000:00/01.0/00.0". Of the numbers of buses it contains only that of the root bus.
std::vector<std::string> PortPaths(const MachineModel& machine);

}  // namespace pciinfo
