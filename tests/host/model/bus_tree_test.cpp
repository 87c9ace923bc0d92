// SPDX-License-Identifier: Apache-2.0
#include "host/model/bus_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace pciinfo {
namespace {

using testing::ElementsAre;

PciFunction Function(PciAddress address, const char* kind = "device", const char* text = "card") {
  PciFunction function;
  function.path = FormatAddress(address);
  function.address = address;
  function.kind = kind;
  function.description = text;
  return function;
}

/// A machine: its functions and the bus numbers of its bridges.
struct Machine {
  BusTreeSource source;
  std::map<PciAddress, BridgeBuses> buses;

  void Bridge(PciAddress address, unsigned secondary, unsigned subordinate) {
    source.functions.push_back(Function(address, "bridge"));
    buses[address] = {secondary, subordinate};
  }
  std::vector<RootBus> Tree() {
    source.busesOf = [this](const PciAddress& address) -> std::optional<BridgeBuses> {
      const auto found = buses.find(address);
      return found == buses.end() ? std::nullopt : std::optional(found->second);
    };
    return MakeBusTree(source);
  }
};

/// "00:01.0(01:00.0 01:00.1)"
std::string Text(const std::vector<BusNode>& nodes) {
  std::string text;
  for (const BusNode& node : nodes) {
    if (!text.empty()) text += ' ';
    text += AddressText(node.function);
    if (!node.alike.empty()) text += "x" + std::to_string(node.alike.size() + 1);
    if (!node.behind.empty()) text += '(' + Text(node.behind) + ')';
  }
  return text;
}

std::vector<std::string> Texts(const std::vector<RootBus>& tree) {
  std::vector<std::string> texts;
  for (const RootBus& root : tree) {
    texts.push_back((root.bus ? std::to_string(*root.bus) : "none") + ": " + Text(root.nodes));
  }
  return texts;
}

TEST(BusTree, NestsBusesBehindTheirBridges) {
  Machine machine;
  machine.source.functions = {Function({2, 0, 0}), Function({1, 0, 1}), Function({0, 0, 0})};
  machine.Bridge({0, 1, 0}, 1, 2);
  machine.Bridge({1, 0, 0}, 2, 2);
  EXPECT_THAT(Texts(machine.Tree()), ElementsAre("0: 00:00.0 00:01.0(01:00.0(02:00.0) 01:00.1)"));
}

TEST(BusTree, BusesWithoutABridgeAreRoots) {
  Machine machine;
  machine.source.functions = {Function({0x80, 0, 0}), Function({0x40, 0, 0})};
  EXPECT_THAT(Texts(machine.Tree()), ElementsAre("64: 40:00.0", "128: 80:00.0"));
}

TEST(BusTree, ABusWithoutItsOwnBridgeIsBehindTheInnermostBridgeAroundIt) {
  Machine machine;
  machine.source.functions = {Function({2, 0, 0}), Function({3, 0, 0}), Function({1, 1, 0})};
  machine.Bridge({0, 1, 0}, 1, 9);
  machine.Bridge({1, 0, 0}, 2, 3);
  EXPECT_THAT(Texts(machine.Tree()), ElementsAre("0: 00:01.0(01:00.0(02:00.0 03:00.0) 01:01.0)"));
}

TEST(BusTree, ABusThatTwoBridgesClaimIsBehindOneOfThem) {
  Machine machine;
  machine.source.functions = {Function({1, 0, 0})};
  machine.Bridge({0, 1, 0}, 1, 1);
  machine.Bridge({0, 2, 0}, 1, 1);
  EXPECT_THAT(Texts(machine.Tree()), ElementsAre("0: 00:01.0(01:00.0) 00:02.0"));
}

TEST(BusTree, FunctionsWithoutAnAddressComeLast) {
  Machine machine;
  machine.source.functions = {PciFunction(), Function({0, 0, 0})};
  machine.source.functions[0].location = "somewhere";
  EXPECT_THAT(Texts(machine.Tree()), ElementsAre("0: 00:00.0", "none: somewhere"));
}

TEST(BusTree, NodesNameTheirSlot) {
  Machine machine;
  machine.source.functions = {Function({1, 0, 0}), Function({2, 0, 0})};
  machine.source.slots.resize(1);
  machine.source.slots[0].designation = "SLOT 7 ";
  machine.source.slots[0].functions = {machine.source.functions[1]};
  const auto tree = machine.Tree();
  EXPECT_EQ(tree[0].nodes[0].slot, "");
  EXPECT_EQ(tree[1].nodes[0].slot, "SLOT 7");
}

TEST(BusTree, MergesSimilarNeighbours) {
  Machine machine;
  for (unsigned i = 0; i < 8; ++i) machine.source.functions.push_back(Function({0, 1, i}));
  machine.source.functions.push_back(Function({0, 2, 0}, "device", "other"));
  for (unsigned i = 0; i < 3; ++i) machine.source.functions.push_back(Function({0, 3, i}));
  auto tree = machine.Tree();
  FoldAlike(tree);
  EXPECT_THAT(Texts(tree), ElementsAre("0: 00:01.0x8 00:02.0 00:03.0 00:03.1 00:03.2"));
}

TEST(BusTree, DoesNotMergeAcrossSlots) {
  Machine machine;
  for (unsigned i = 0; i < 5; ++i) machine.source.functions.push_back(Function({0, 1, i}));
  machine.source.slots.resize(1);
  machine.source.slots[0].tag = "Tag 1";
  machine.source.slots[0].functions = {machine.source.functions[4]};
  auto tree = machine.Tree();
  FoldAlike(tree);
  EXPECT_THAT(Texts(tree), ElementsAre("0: 00:01.0x4 00:01.4"));
}

TEST(BusTree, PruningKeepsTheBridgesOnTheWay) {
  Machine machine;
  machine.source.functions = {Function({2, 0, 0}), Function({1, 0, 1}), Function({0, 0, 0}),
                              Function({0x80, 0, 0})};
  machine.Bridge({0, 1, 0}, 1, 2);
  machine.Bridge({1, 0, 0}, 2, 2);
  auto tree = machine.Tree();
  Prune(tree, [](const PciFunction& function) { return function.path == "02:00.0"; });
  EXPECT_THAT(Texts(tree), ElementsAre("0: 00:01.0(01:00.0(02:00.0))"));
}

void CollectPaths(const std::vector<BusNode>& nodes, std::multiset<std::string>& paths) {
  for (const BusNode& node : nodes) {
    paths.insert(node.function.path);
    for (const PciFunction& function : node.alike) paths.insert(function.path);
    CollectPaths(node.behind, paths);
  }
}

TEST(BusTree, ContainsEveryFunctionOnceWhateverTheBridgesClaim) {
  std::mt19937 random(7);  // NOLINT: the same machines in every run
  for (int round = 0; round < 200; ++round) {
    Machine machine;
    std::multiset<std::string> expected;
    for (unsigned bus = 0; bus < 12; ++bus) {
      for (unsigned device = 0; device < 3; ++device) {
        const PciAddress address{bus, device, 0};
        const unsigned secondary = bus + 1 + static_cast<unsigned>(random() % 6);
        machine.Bridge(address, secondary, secondary + static_cast<unsigned>(random() % 4));
        expected.insert(FormatAddress(address));
      }
    }
    auto tree = machine.Tree();
    FoldAlike(tree);
    std::multiset<std::string> found;
    for (const RootBus& root : tree) CollectPaths(root.nodes, found);
    ASSERT_EQ(found, expected);
  }
}

}  // namespace
}  // namespace pciinfo
