// SPDX-License-Identifier: Apache-2.0

// Switches of the board, slots inside slots, and slots with one port.

#include <gtest/gtest.h>

#include "tests/topology/resolved_machine.h"

namespace topology {
namespace {

TEST(SlotSwitches, RecordsThatNameTheSwitchPortsOfTheBoardMeanThose) {
  MadeMachine machine;
  AddBoardSwitch(machine, 8, 16);
  machine.Record("A", "0000:66:08.0");
  machine.Record("B", "0000:66:10.0");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("A"), (Names{"0000:67:00.0"}));
  EXPECT_EQ(resolved.In("B"), (Names{"0000:68:00.0"}));
}

TEST(SlotSwitches, SlotsWithOnePortShareTheCardsBehindItsSwitch) {
  MadeMachine machine;
  AddBoardSwitch(machine, 8, 16);
  for (const char* name : {"A", "B", "C"}) machine.Record(name, "0000:64:00.0", 1);
  const Resolved resolved(machine);
  ASSERT_EQ(resolved.All().shared.size(), 1U);
  EXPECT_EQ(resolved.All().shared[0].slots.size(), 3U);
  EXPECT_EQ(resolved.SharedFunctions(), (Names{"0000:67:00.0", "0000:68:00.0"}));
  EXPECT_TRUE(resolved.In("A").empty());
  EXPECT_EQ(resolved.PlaceOf("0000:67:00.0"), Place::kShared);
  EXPECT_NE(resolved.PlaceOf("0000:65:00.0"), Place::kShared) << "the switch is soldered";
  EXPECT_EQ(resolved.SlotNamed("B").state, SlotState::kUnknown);
}

TEST(SlotSwitches, OneSlotInTwoRecordsIsNotShared) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Record("M.2", "0000:01:00.0", 7).peers = {At("0000:01:00.1")};
  machine.Record("M.2", "0000:01:00.0", 7).peers = {At("0000:01:00.1")};
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("M.2"), kCard);
  EXPECT_EQ(resolved.SlotNamed("M.2 (2)").noTargetBecause,
            "SMBIOS record 0x0901 repeats SMBIOS record 0x0900");
  EXPECT_EQ(resolved.SlotNamed("M.2 (2)").state, SlotState::kUnknown);
}

TEST(SlotSwitches, RecordsThatGiveOnlyPeersAreNoRepetitions) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Record("M.2", "", 7).peers = {At("0000:01:00.0")};
  machine.Record("M.2", "", 7).peers = {At("0000:01:00.0")};
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SharedFunctions(), kCard);
}

TEST(SlotSwitches, AnAddressInManyRecordsOfAPortWithoutASwitchTellsNothing) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  for (const char* name : {"A", "B", "C"}) machine.Record(name, "0000:00:01.1");
  EXPECT_EQ(Resolved(machine).SharedFunctions(), kCard);
  machine.Record("D", "0000:00:01.1");
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.All().shared.empty());
  EXPECT_EQ(resolved.PlaceOf("0000:01:00.0"), Place::kUnnamedSlot);
  EXPECT_EQ(resolved.SlotNamed("D").noTargetBecause,
            "SMBIOS record 0x0903 names port 0000:00:01.1, as 3 other records do");
}

TEST(SlotSwitches, SlotsWithOnePortAreToldApartByNumbersThatMatchAllOfThem) {
  MadeMachine machine;
  AddBoardSwitch(machine, 8, 16);
  machine.Record("A", "0000:64:00.0", 16);
  machine.Record("B", "0000:64:00.0", 8);
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("A"), (Names{"0000:68:00.0"}));
  EXPECT_EQ(resolved.In("B"), (Names{"0000:67:00.0"}));
  EXPECT_EQ(resolved.CertaintyOf("0000:67:00.0"), Certainty::kLikely);
  EXPECT_EQ(resolved.EvidenceOf("0000:67:00.0"),
            "SMBIOS record 0x0901 has the slot ID 8, the physical slot number of port "
            "0000:66:08.0; 0000:67:00.0 is behind it");
}

TEST(SlotSwitches, ANumberThatMatchesOneOfThemIsNotEnough) {
  MadeMachine machine;
  AddBoardSwitch(machine, 8, 16);
  machine.Record("A", "0000:64:00.0", 8);
  machine.Record("B", "0000:64:00.0", 9);
  EXPECT_EQ(Resolved(machine).SharedFunctions(), (Names{"0000:67:00.0", "0000:68:00.0"}));
}

TEST(SlotSwitches, TheInnerSlotWinsAndRemembersTheOuterOne) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 4);
  machine.Port("0000:01:00.0", 2, 4, -1, PortType::kUpstreamPort);
  machine.Port("0000:02:00.0", 3, 3, 1, PortType::kDownstreamPort);
  machine.Port("0000:02:01.0", 4, 4, 2, PortType::kDownstreamPort);
  machine.Card("0000:03:00.0");
  machine.Record("Riser", "0000:00:01.0");
  machine.Record("Riser slot 1", "0000:02:00.0");
  machine.Record("Riser slot 2", "0000:02:01.0").usage = 3;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Riser slot 1"), (Names{"0000:03:00.0"}));
  EXPECT_EQ(resolved.In("Riser"), (Names{"0000:01:00.0", "0000:02:00.0", "0000:02:01.0"}));
  const Slot& inner = resolved.SlotNamed("Riser slot 1");
  ASSERT_TRUE(inner.outer);
  EXPECT_EQ(resolved.All().slots[*inner.outer].name, "Riser");
  EXPECT_EQ(resolved.SlotNamed("Riser slot 2").state, SlotState::kEmpty);
}

}  // namespace
}  // namespace topology
