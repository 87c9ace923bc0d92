// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "host/diff/machine_state.h"

namespace pciinfo {

/// Which objects of two lists correspond.
struct Partners {
  std::vector<std::optional<std::size_t>> toBefore;  ///< for each new object
  std::vector<std::optional<std::size_t>> toAfter;   ///< for each old object
};

struct MachinePairs {
  Partners slots;
  Partners functions;
};

/// Decides which slots and functions of two machines correspond. A card is known by its serial
/// number, else by its slot, else by the ports that lead to it, whose numbers within their bus do
/// not depend on the numbers of the buses; what remains is paired by address.
MachinePairs PairMachines(const MachineState& before, const MachineState& after);

}  // namespace pciinfo
