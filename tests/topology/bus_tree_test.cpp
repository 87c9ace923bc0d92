// SPDX-License-Identifier: Apache-2.0
#include "topology/bus_tree.h"

#include <gtest/gtest.h>

#include "tests/topology/made_machine.h"

namespace topology {
namespace {

/// The address of the parent of a function; empty for one on a root bus.
std::string ParentOf(MadeMachine& machine, const std::string& address) {
  const BusTree tree(machine.Get().functions);
  const auto parent = tree.GetParent(tree.Find(At(address)).value());
  return parent ? ToText(tree.At(*parent).address) : "";
}

TEST(BusTree, LeadsFromBridgesToTheirSecondaryBus) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 3);
  machine.Port("0000:01:00.0", 2, 3, -1, PortType::kUpstreamPort);
  machine.Port("0000:02:00.0", 3, 3, -1, PortType::kDownstreamPort);
  machine.Card("0000:03:00.0");
  EXPECT_EQ(ParentOf(machine, "0000:00:01.0"), "");
  EXPECT_EQ(ParentOf(machine, "0000:01:00.0"), "0000:00:01.0");
  EXPECT_EQ(ParentOf(machine, "0000:02:00.0"), "0000:01:00.0");
  EXPECT_EQ(ParentOf(machine, "0000:03:00.0"), "0000:02:00.0");
}

TEST(BusTree, ABusThatNoBridgeBeginsBelongsToTheInnermostRange) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 9);
  machine.Port("0000:01:00.0", 2, 5, -1, PortType::kUpstreamPort);
  machine.Port("0000:02:00.0", 3, 3, -1, PortType::kDownstreamPort);
  machine.Card("0000:04:00.0");
  machine.Card("0000:08:00.0");
  machine.Card("0000:0a:00.0");
  EXPECT_EQ(ParentOf(machine, "0000:04:00.0"), "0000:01:00.0");
  EXPECT_EQ(ParentOf(machine, "0000:08:00.0"), "0000:00:01.0") << "virtual functions stand so";
  EXPECT_EQ(ParentOf(machine, "0000:0a:00.0"), "") << "a root bus of its own";
}

TEST(BusTree, DomainsAreApart) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 1);
  machine.Card("10000:01:00.0");
  machine.Port("10000:00:02.0", 1, 1);
  EXPECT_EQ(ParentOf(machine, "10000:01:00.0"), "10000:00:02.0");
  const BusTree tree(machine.Get().functions);
  EXPECT_TRUE(tree.HasDomain(0));
  EXPECT_TRUE(tree.HasDomain(0x10000));
  EXPECT_FALSE(tree.HasDomain(1));
  EXPECT_FALSE(tree.HasDomain(0x10001));
}

TEST(BusTree, BridgesThatWereNotSetUpOrLeadBackLeadNowhere) {
  MadeMachine machine;
  machine.Bridge("0000:00:01.0", 0, 0);
  machine.Bridge("0000:02:00.0", 1, 2);
  machine.Bridge("0000:03:00.0", 3, 3);
  machine.Card("0000:01:00.0");
  for (const char* address : {"0000:00:01.0", "0000:01:00.0", "0000:02:00.0", "0000:03:00.0"}) {
    EXPECT_EQ(ParentOf(machine, address), "") << address;
  }
}

TEST(BusTree, FindsFunctionsAndDevices) {
  MadeMachine machine;
  machine.Card("0000:01:00.0");
  machine.Card("0000:01:00.3");
  machine.Card("0000:01:01.0");
  const BusTree tree(machine.Get().functions);
  EXPECT_EQ(tree.Find(At("0000:01:00.3")), 1U);
  EXPECT_FALSE(tree.Find(At("0000:01:00.1")));
  EXPECT_EQ(tree.FindDevice(At("0000:01:00.7")), (std::pair<std::size_t, std::size_t>{0, 2}));
  const auto [first, last] = tree.FindDevice(At("0000:02:00.0"));
  EXPECT_EQ(first, last);
  EXPECT_EQ(tree.GetRoots().size(), 3U);
}

}  // namespace
}  // namespace topology
