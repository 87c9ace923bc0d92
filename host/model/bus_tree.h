// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/model/bridge_buses.h"
#include "host/model/slots_model.h"

namespace pciinfo {

/// A function, or a group of similar neighbours, and the functions behind it.
struct BusNode {
  PciFunction function;            ///< the first of the group
  std::vector<PciFunction> alike;  ///< the rest of the group
  std::string slot;                ///< name of the slot that holds them; empty for none
  std::optional<BridgeBuses> buses;
  std::vector<BusNode> behind;
};

/// A bus that is not behind any bridge.
struct RootBus {
  std::optional<unsigned> bus;  ///< empty for functions without a readable address
  std::vector<BusNode> nodes;
};

/// The input of MakeBusTree.
struct BusTreeSource {
  std::vector<PciFunction> functions;
  std::vector<Slot> slots;
  std::function<std::optional<BridgeBuses>(const PciAddress&)> busesOf;
};

/// Builds the tree of buses, ordered by bus and address. It contains every function exactly once,
/// even if two bridges claim a bus or none does. Functions on a bus without a bridge of its own
/// (virtual functions whose numbers continue on the next bus) are placed behind the innermost
/// bridge whose bus range includes it.
std::vector<RootBus> MakeBusTree(const BusTreeSource& source);

/// Merges four or more neighbours into one node if they have the same description and slot, and no
/// functions behind them.
void FoldAlike(std::vector<RootBus>& tree);

/// Removes all functions but those for which `keeps` is true and the bridges that lead to them.
void Prune(std::vector<RootBus>& tree,
           const std::function<bool(const PciFunction& function)>& keeps);

}  // namespace pciinfo
