// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/diff/function_facts.h"
#include "host/diff/machine_pairs.h"

namespace pciinfo {

/// Returns what differs in the functions that both sides have. Functions with the same changes are
/// one object. Buses that only have other numbers come first.
std::vector<ObjectChange> ChangedFunctions(const MachineState& before, const MachineState& after,
                                           const MachinePairs& pairs, const DiffScope& scope,
                                           UnknownFacts& unknown);

}  // namespace pciinfo
