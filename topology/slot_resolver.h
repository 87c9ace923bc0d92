// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "topology/bus_tree.h"
#include "topology/slots.h"

namespace topology {

/// Says which slots the machine has, and which function sits in which. Every function sits in at
/// most one slot, the innermost that holds it, or in one shared place; every statement has its
/// evidence. `tree` is made of the machine's functions. Takes time that grows with the number of
/// functions and records.
Resolution ResolveSlots(const Machine& machine, const BusTree& tree);

}  // namespace topology
