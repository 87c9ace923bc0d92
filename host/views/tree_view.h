// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/machine/port_tree.h"

namespace pciinfo {

/// Draws the buses: one function or group of similar functions per line, slots in brackets at the
/// ports that lead to them, and a mark where a link is narrower than both of its ends allow.
void WriteTree(Output& output, const std::vector<RootBus>& tree, const MachineModel& machine,
               const Terminal& terminal);

/// Writes the same as JSON; docs/formats.md describes it.
void WriteTreeJson(Output& output, const std::vector<RootBus>& tree, const MachineModel& machine);

}  // namespace pciinfo
