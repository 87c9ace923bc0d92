// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "topology/machine.h"

namespace topology {

/// Reads what the kernel shows of the slots beside their addresses: power, attention indicator,
/// latch and presence of a card. Slots without hot-plug have none of these files.
void ReadSlotStates(std::vector<KernelSlot>& slots);

}  // namespace topology
