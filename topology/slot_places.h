// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "topology/bus_tree.h"
#include "topology/slots.h"

namespace topology {

/// Places every function by the targets of the slots in `resolution`: fills its occupants, shared
/// places and places of functions. Adds a slot for each port with the slot bit that no slot leads
/// to or holds.
void PlaceFunctions(const Machine& machine, const BusTree& tree, Resolution& resolution);

}  // namespace topology
