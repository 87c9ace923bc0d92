// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <vector>

#include "host/machine/cards.h"

namespace pciinfo {

/// A function, or a group of similar neighbours, and the functions behind it.
struct PortNode {
  FunctionList functions;  ///< at least one
  std::vector<PortNode> behind;
};

/// A bus that is not behind any bridge, with its functions.
struct RootBus {
  unsigned domain = 0;
  unsigned bus = 0;
  std::vector<PortNode> nodes;
};

/// Builds the tree of the functions from the ports that lead to them, ordered by address. It
/// contains every function exactly once; the machine must outlive it.
std::vector<RootBus> MakePortTree(const MachineModel& machine);

/// Merges four or more neighbours into one node if they are of one model, at one place, and have no
/// functions behind them.
void FoldAlike(std::vector<RootBus>& tree);

/// Removes all functions but those for which `keeps` is true and the bridges that lead to them.
void Prune(std::vector<RootBus>& tree,
           const std::function<bool(const MachineFunction& function)>& keeps);

}  // namespace pciinfo
