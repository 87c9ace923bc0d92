// SPDX-License-Identifier: Apache-2.0
#include "host/model/bus_tree.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>

#include "host/model/slot_name.h"

namespace pciinfo {
namespace {

constexpr std::size_t kLeastAlike = 4;

/// Stands for the bus of functions without a readable address.
constexpr unsigned kNoBus = 256;

/// The nodes before nesting: by bus, ordered by address.
using NodesByBus = std::map<unsigned, std::vector<BusNode>>;

std::unordered_map<std::string, std::string> SlotNames(const std::vector<Slot>& slots) {
  std::unordered_map<std::string, std::string> names;
  for (const Slot& slot : slots) {
    for (const PciFunction& function : slot.functions) names.emplace(function.path, SlotName(slot));
  }
  return names;
}

NodesByBus MakeNodes(const BusTreeSource& source) {
  const auto names = SlotNames(source.slots);
  std::vector<PciFunction> functions = source.functions;
  SortByAddress(functions);
  NodesByBus nodes;
  for (PciFunction& function : functions) {
    BusNode node;
    if (const auto name = names.find(function.path); name != names.end()) node.slot = name->second;
    const bool isBridge = function.kind == "bridge" && function.address;
    if (isBridge) node.buses = source.busesOf(*function.address);
    const unsigned bus = function.address ? function.address->bus : kNoBus;
    node.function = std::move(function);
    nodes[bus].push_back(std::move(node));
  }
  return nodes;
}

/// Position of a bridge in NodesByBus.
struct Place {
  unsigned bus = 0;
  std::size_t index = 0;
};

/// Whether a bridge with the buses `left` is nearer to `bus` than one with the buses `right`.
bool IsNearer(const BridgeBuses& left, const BridgeBuses& right, unsigned bus) {
  if ((left.secondary == bus) != (right.secondary == bus)) return left.secondary == bus;
  return left.subordinate - left.secondary < right.subordinate - right.secondary;
}

/// Finds the bridge that leads to a bus. A bridge's own bus has a lower number than the buses
/// behind it, so the tree has no cycles.
std::optional<Place> FindBridge(const NodesByBus& nodes, unsigned bus) {
  std::optional<Place> found;
  const BridgeBuses* nearest = nullptr;
  for (const auto& [from, siblings] : nodes) {
    if (from >= bus || bus == kNoBus) break;
    for (std::size_t i = 0; i < siblings.size(); ++i) {
      const std::optional<BridgeBuses>& buses = siblings[i].buses;
      if (!buses || buses->secondary > bus || buses->subordinate < bus) continue;
      if (nearest != nullptr && !IsNearer(*buses, *nearest, bus)) continue;
      nearest = &*buses;
      found = Place{from, i};
    }
  }
  return found;
}

bool AreAlike(const BusNode& left, const BusNode& right) {
  return left.behind.empty() && right.behind.empty() && !left.buses && !right.buses &&
         left.slot == right.slot && left.function.kind == right.function.kind &&
         left.function.vendorId == right.function.vendorId &&
         left.function.deviceId == right.function.deviceId &&
         left.function.description == right.function.description;
}

void Fold(std::vector<BusNode>& nodes) {
  std::vector<BusNode> folded;
  for (std::size_t start = 0; start < nodes.size();) {
    std::size_t end = start + 1;
    while (end < nodes.size() && AreAlike(nodes[start], nodes[end])) ++end;
    const bool isMany = end - start >= kLeastAlike;
    if (!isMany) end = start + 1;
    BusNode node = std::move(nodes[start]);
    Fold(node.behind);
    for (std::size_t i = start + 1; i < end; ++i) {
      node.alike.push_back(std::move(nodes[i].function));
    }
    folded.push_back(std::move(node));
    start = end;
  }
  nodes = std::move(folded);
}

void PruneNodes(std::vector<BusNode>& nodes,
                const std::function<bool(const PciFunction& function)>& keeps) {
  std::erase_if(nodes, [&keeps](BusNode& node) {
    PruneNodes(node.behind, keeps);
    return node.behind.empty() && !keeps(node.function);
  });
}

}  // namespace

std::vector<RootBus> MakeBusTree(const BusTreeSource& source) {
  NodesByBus nodes = MakeNodes(source);
  std::map<unsigned, Place> bridges;
  for (const auto& [bus, siblings] : nodes) {
    if (const auto bridge = FindBridge(nodes, bus)) bridges[bus] = *bridge;
  }
  // From the highest bus down, so that a bus is complete before it is moved behind its bridge.
  for (auto bridge = bridges.rbegin(); bridge != bridges.rend(); ++bridge) {
    const auto& [bus, place] = *bridge;
    std::vector<BusNode>& behind = nodes.at(place.bus)[place.index].behind;
    std::vector<BusNode> moved = std::move(nodes.extract(bus).mapped());
    behind.insert(behind.begin(), std::make_move_iterator(moved.begin()),
                  std::make_move_iterator(moved.end()));
  }
  std::vector<RootBus> tree;
  for (auto& [bus, siblings] : nodes) {
    tree.push_back({bus == kNoBus ? std::nullopt : std::optional(bus), std::move(siblings)});
  }
  return tree;
}

void FoldAlike(std::vector<RootBus>& tree) {
  for (RootBus& root : tree) Fold(root.nodes);
}

void Prune(std::vector<RootBus>& tree,
           const std::function<bool(const PciFunction& function)>& keeps) {
  for (RootBus& root : tree) PruneNodes(root.nodes, keeps);
  std::erase_if(tree, [](const RootBus& root) { return root.nodes.empty(); });
}

}  // namespace pciinfo
