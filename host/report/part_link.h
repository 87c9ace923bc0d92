// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "host/machine/port_tree.h"
#include "host/report/parts.h"

namespace pciinfo {

/// Returns the link between a port and the device behind it: what it does, and what both ends
/// allow. No value where there is no link, as behind bridges of conventional buses, or where
/// nothing is known of it.
std::optional<PartLink> LinkBehind(const PortNode& port, const MachineModel& machine);

}  // namespace pciinfo
