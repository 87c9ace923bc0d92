#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/model/bridge_buses.h"
#include "host/model/slots_model.h"

namespace pciinfo {

/// A function, or several neighbours that are alike, and what is behind it.
struct BusNode {
  PciFunction function;            ///< the first of them
  std::vector<PciFunction> alike;  ///< the others
  std::string slot;                ///< name of the slot that they sit in; empty for none
  std::optional<BridgeBuses> buses;
  std::vector<BusNode> behind;
};

/// A bus that no bridge leads to.
struct RootBus {
  std::optional<unsigned> bus;  ///< no value for functions whose address cannot be read
  std::vector<BusNode> nodes;
};

/// What the tree is made of.
struct BusTreeSource {
  std::vector<PciFunction> functions;
  std::vector<Slot> slots;
  std::function<std::optional<BridgeBuses>(const PciAddress&)> busesOf;
};

/// The buses as a tree, by bus and address. Every function stands in it exactly once, also on
/// machines whose bridges claim a bus twice or none at all. Functions on a bus without a bridge of
/// its own (virtual functions that go on counting on the next bus) stand behind the innermost
/// bridge whose range of buses holds it.
std::vector<RootBus> MakeBusTree(const BusTreeSource& source);

/// Folds neighbours that are alike: four or more of one description in one slot, with nothing
/// behind them.
void FoldAlike(std::vector<RootBus>& tree);

/// Keeps the functions for which `keeps` holds, and the bridges on the way to them.
void Prune(std::vector<RootBus>& tree,
           const std::function<bool(const PciFunction& function)>& keeps);

}  // namespace pciinfo
