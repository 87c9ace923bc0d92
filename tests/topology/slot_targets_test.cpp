// SPDX-License-Identifier: Apache-2.0

// What the address of a record means: the port, the card, or a device of a conventional bus.

#include <gtest/gtest.h>

#include "tests/topology/resolved_machine.h"

namespace topology {
namespace {

// What firmware writes into the record of a slot whose card is at 01:00.0 behind port 00:01.1.
class NamedAddressTest : public testing::TestWithParam<NamedAddress> {};

TEST_P(NamedAddressTest, MeansTheCardBehindThePort) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Record("Slot 1", GetParam().address);
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 1"), kCard);
  EXPECT_EQ(resolved.CertaintyOf("0000:01:00.1"), Certainty::kCertain);
  EXPECT_EQ(resolved.SlotNamed("Slot 1").state, SlotState::kOccupied);
  EXPECT_NE(resolved.EvidenceOf("0000:01:00.0").find("SMBIOS record 0x0900 names "),
            std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Firmware, NamedAddressTest,
    testing::Values(NamedAddress{"Port", "0000:00:01.1"}, NamedAddress{"Card", "0000:01:00.0"},
                    NamedAddress{"SecondFunction", "0000:01:00.1"},
                    NamedAddress{"MissingFunction", "0000:01:00.4"},
                    NamedAddress{"DeviceThatTheLinkCannotHold", "0000:01:01.0"}),
    [](const auto& test) { return test.param.what; });

TEST(SlotTargets, EvidenceNamesSourceValueAndConclusion) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Record("Slot 1", "0000:00:01.1");
  EXPECT_EQ(Resolved(machine).EvidenceOf("0000:01:00.1"),
            "SMBIOS record 0x0900 names port 0000:00:01.1; 0000:01:00.1 is behind it");
}

TEST(SlotTargets, APortWithNothingBehindItIsAnEmptySlot) {
  MadeMachine machine;
  machine.Port("0000:00:01.1", 1, 1);
  machine.Record("Slot 1", "0000:01:00.0").usage = 3;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNamed("Slot 1").state, SlotState::kEmpty);
  EXPECT_TRUE(resolved.SlotNamed("Slot 1").conflicts.empty());
}

TEST(SlotTargets, TheSwitchOfACardIsInTheSlotWithAllBehindIt) {
  MadeMachine machine;
  machine.Port("0000:00:02.0", 3, 5, 6);
  machine.Port("0000:03:00.0", 4, 5, -1, PortType::kUpstreamPort);
  machine.Port("0000:04:00.0", 5, 5, -1, PortType::kDownstreamPort);
  machine.Card("0000:05:00.0", 0x0300);
  machine.Record("Slot 6", "0000:03:00.4");
  EXPECT_EQ(Resolved(machine).In("Slot 6"),
            (Names{"0000:03:00.0", "0000:04:00.0", "0000:05:00.0"}));
}

TEST(SlotTargets, AtTheEndOfALinkStandsACardWhateverTypeItClaims) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 2);
  machine.Port("0000:01:00.0", 2, 2, 1, PortType::kRootPort);
  machine.Card("0000:02:00.0");
  machine.Record("Slot 1", "0000:01:00.0");
  EXPECT_EQ(Resolved(machine).In("Slot 1"), (Names{"0000:01:00.0", "0000:02:00.0"}));
}

TEST(SlotTargets, AnImpossibleSegmentIsTakenAsZeroWhereTheFunctionIs) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Record("Slot 1", "ff00:01:00.0");
  machine.Record("Slot 2", "ff00:05:00.0");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 1"), kCard);
  EXPECT_EQ(resolved.CertaintyOf("0000:01:00.0"), Certainty::kLikely);
  EXPECT_FALSE(resolved.SlotNamed("Slot 2").noTargetBecause.empty());
}

TEST(SlotTargets, ASegmentThatExistsIsBelieved) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Port("0001:00:01.1", 1, 1);
  machine.Record("Slot 1", "0001:01:00.0").usage = 3;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNamed("Slot 1").state, SlotState::kEmpty);
  EXPECT_TRUE(resolved.In("Slot 1").empty());
}

TEST(SlotTargets, OnAConventionalBusASlotIsADeviceAndWhatIsBehindIt) {
  MadeMachine machine;
  machine.Bridge("0000:00:1e.0", 5, 7);
  machine.Card("0000:05:01.0");
  machine.Card("0000:05:01.1");
  machine.Bridge("0000:05:02.0", 6, 6);
  machine.Card("0000:06:04.0");
  machine.Card("0000:05:03.0");
  machine.Record("PCI 1", "0000:05:01.0");
  machine.Record("PCI 2", "0000:05:02.0");
  machine.Record("PCI 4", "0000:05:04.0").usage = 3;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("PCI 1"), (Names{"0000:05:01.0", "0000:05:01.1"}));
  EXPECT_EQ(resolved.In("PCI 2"), (Names{"0000:05:02.0", "0000:06:04.0"}));
  EXPECT_EQ(resolved.SlotNamed("PCI 4").state, SlotState::kEmpty);
  EXPECT_EQ(resolved.PlaceOf("0000:05:03.0"), Place::kUnknown);
}

TEST(SlotTargets, ARecordOfAConventionalBridgeOnARootBusMeansItsBus) {
  MadeMachine machine;
  machine.Bridge("0000:00:1e.0", 5, 5);
  machine.Card("0000:05:01.0");
  machine.Record("PCI", "0000:00:1e.0");
  EXPECT_EQ(Resolved(machine).In("PCI"), (Names{"0000:05:01.0"}));
}

TEST(SlotTargets, ARecordOfAConventionalSlotThatNamesTheRootPortMeansTheBusOfTheBridge) {
  MadeMachine machine;
  machine.Port("0000:00:1c.6", 2, 3);
  machine.Port("0000:02:00.0", 3, 3, -1, PortType::kExpressToPciBridge);
  machine.Card("0000:03:01.0");
  for (const char* address : {"0000:00:1c.6", "0000:02:00.0"}) {
    MadeMachine named = machine;
    named.Record("PCI 1", address).type = 0x06;
    EXPECT_EQ(Resolved(named).In("PCI 1"), (Names{"0000:03:01.0"})) << "the bridge is soldered";
  }
}

TEST(SlotTargets, ACardBusBridgeLeadsToWhatIsPluggedIn) {
  MadeMachine machine;
  machine.Bridge("0000:00:1e.0", 5, 9);
  machine.Bridge("0000:05:00.0", 6, 6).config.headerType = 2;
  machine.Card("0000:06:00.0");
  machine.Record("PC Card", "0000:05:00.0");
  EXPECT_EQ(Resolved(machine).In("PC Card"), (Names{"0000:06:00.0"}));
}

TEST(SlotTargets, WhatStandsOnARootBusOfPciExpressIsInNoSlot) {
  MadeMachine machine;
  machine.Card("0000:00:1f.2", 0x0106);
  machine.Record("Slot 1", "0000:00:1f.2");
  machine.Record("Slot 2", "0000:00:1f.7");
  machine.Port("0000:00:1c.0", 1, 1);
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.In("Slot 1").empty());
  EXPECT_TRUE(resolved.In("Slot 2").empty());
  EXPECT_EQ(resolved.PlaceOf("0000:00:1f.2"), Place::kOnBoard);
}

TEST(SlotTargets, AConventionalSlotMayBeOnARootBusThatHasPortsToo) {
  MadeMachine machine;
  machine.Card("0000:00:10.0", 0x0100);
  machine.Port("0000:00:15.0", 1, 1);
  machine.Record("PCI Slot J12", "0000:00:10.0").type = 0x06;
  EXPECT_EQ(Resolved(machine).In("PCI Slot J12"), (Names{"0000:00:10.0"}))
      << "emulated machines are so";
}

TEST(SlotTargets, CardsMaySitOnAConventionalRootBus) {
  MadeMachine machine;
  machine.Card("0000:00:00.0", 0x0600);
  machine.Card("0000:00:03.0");
  machine.Card("0000:00:04.0");
  machine.Record("Slot 3", "0000:00:03.0");
  machine.KernelSlotAt("9", "0000:00:09");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 3"), (Names{"0000:00:03.0"}));
  EXPECT_EQ(resolved.PlaceOf("0000:00:04.0"), Place::kUnknown);
  EXPECT_EQ(resolved.PlaceOf("0000:00:00.0"), Place::kOnBoard);
  EXPECT_EQ(resolved.SlotNamed("9").state, SlotState::kEmpty);
}

TEST(SlotTargets, OnALinkAllFunctionsAreOfTheCard) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 2);
  machine.Card("0000:01:00.0");
  machine.Card("0000:01:00.7");
  machine.Card("0000:01:01.3");
  machine.Card("0000:02:10.1").physicalFunction = At("0000:01:00.0");
  machine.Record("Slot 1", "0000:01:00.0");
  EXPECT_EQ(Resolved(machine).In("Slot 1").size(), 4U)
      << "alternative routing, and virtual functions on a bus that no bridge begins";
}

TEST(SlotTargets, EachHostBridgeAndDomainHasItsOwnBuses) {
  MadeMachine machine;
  for (const char* root : {"0000:40:01.1", "0001:00:01.1", "10000:00:01.1"}) {
    const unsigned bus = root[5] == '4' ? 0x41 : 1;
    machine.Port(root, bus, bus);
  }
  machine.Card("0000:41:00.0");
  machine.Card("0001:01:00.0");
  machine.Card("10000:01:00.0");
  machine.Record("A", "0000:40:01.1");
  machine.Record("B", "0001:01:00.0");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("A"), (Names{"0000:41:00.0"}));
  EXPECT_EQ(resolved.In("B"), (Names{"0001:01:00.0"}));
  EXPECT_EQ(resolved.PlaceOf("10000:01:00.0"), Place::kUnnamedSlot);
}

TEST(SlotTargets, APortOfAnotherRecordIsNotAPeer) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.1", 1);
  AddCardBehindPort(machine, "0000:00:01.2", 2);
  machine.Record("Slot 1", "0000:01:00.0").peers = {At("0000:02:00.0")};
  machine.Record("Slot 2", "0000:00:01.2");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 1"), kCard);
  EXPECT_EQ(resolved.In("Slot 2").size(), 2U);
}

TEST(SlotTargets, PeersOfABifurcatedSlotBelongToIt) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.1", 1);
  AddCardBehindPort(machine, "0000:00:01.2", 2);
  machine.Record("Slot 1", "0000:01:00.0").peers = {At("0000:02:00.0"), At("0000:01:00.0")};
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 1").size(), 4U);
  EXPECT_EQ(resolved.SlotNamed("Slot 1").targets.size(), 2U);
}

TEST(SlotTargets, WithoutPrivilegesALinkIsConcludedFromWhatIsThere) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 1).config.capabilitiesKnown = false;
  machine.Card("0000:01:00.0");
  machine.Bridge("0000:00:1e.0", 2, 2).config.capabilitiesKnown = false;
  machine.Card("0000:02:03.0");
  machine.Card("0000:02:04.0");
  for (Function& function : machine.Get().functions) function.config.express.reset();
  machine.Record("PCIe", "0000:01:00.2");
  machine.Record("PCI", "0000:02:03.0");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("PCIe"), (Names{"0000:01:00.0"}));
  EXPECT_EQ(resolved.In("PCI"), (Names{"0000:02:03.0"}));
  EXPECT_EQ(resolved.PlaceOf("0000:02:04.0"), Place::kUnknown);
}

}  // namespace
}  // namespace topology
