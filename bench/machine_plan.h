// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace bench {

/// A slot as the firmware describes it, and the functions that are really in it.
struct PlannedSlot {
  std::string designation;
  unsigned bus = 0;                    ///< 0: the slot is empty
  std::vector<std::string> functions;  ///< the functions in it, "0000:3b:00.0"
};

struct MachinePlan {
  nlohmann::json recipe;           ///< as BuildMachine of tests/recipes/machine_recipe.h takes it
  std::vector<PlannedSlot> slots;  ///< in the firmware's order: the first one has tag 1
};

/// The fewest and the most functions that PlanMachine can make.
inline constexpr std::size_t kFewestFunctions = 64;
inline constexpr std::size_t kMostFunctions = 20000;

/// Returns the plan of a server with exactly `functions` PCI functions, always the same one. It
/// resembles real servers: processor sockets with a root bus each, root ports with cards behind
/// them (network ports, drives, graphics, storage, switches with drives), empty slots, and buses
/// full of the processors' own multi-function devices; configuration spaces of 64, 256 and 4096
/// bytes with typical capabilities; a few functions in separate PCI domains, like behind volume
/// management controllers. Throws std::invalid_argument for a number that is not possible.
MachinePlan PlanMachine(std::size_t functions);

}  // namespace bench
