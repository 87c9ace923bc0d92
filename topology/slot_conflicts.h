// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "topology/bus_tree.h"
#include "topology/slots.h"

namespace topology {

/// Fills the states and conflicts of the slots: what the firmware says of their use, what the ports
/// report, and what is there.
void JudgeSlots(const Machine& machine, const BusTree& tree, Resolution& resolution);

}  // namespace topology
