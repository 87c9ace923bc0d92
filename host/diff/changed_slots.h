// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/diff/fact_list.h"
#include "host/diff/machine_pairs.h"

namespace pciinfo {

/// Returns what differs in the slots. A slot that got or lost a card is left out, because the
/// change of the card tells it; so are added and removed slots that nobody names.
std::vector<ObjectChange> ChangedSlots(const MachineState& before, const MachineState& after,
                                       const MachinePairs& pairs, const DiffScope& scope,
                                       UnknownFacts& unknown);

}  // namespace pciinfo
