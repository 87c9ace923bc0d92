// SPDX-License-Identifier: Apache-2.0

// What sits in no slot that the firmware names, and the names of slots.

#include <gtest/gtest.h>

#include "tests/topology/resolved_machine.h"

namespace topology {
namespace {

TEST(SlotPlaces, WhatNoSlotHoldsIsOnBoardOnlyWithAReason) {
  MadeMachine machine;
  machine.Card("0000:00:1f.3", 0x0403);
  machine.Port("0000:00:1c.0", 1, 1, -1);
  machine.Card("0000:01:00.0");
  machine.Port("0000:00:1c.1", 2, 2, 9);
  machine.Card("0000:02:00.0");
  machine.Bridge("0000:00:1e.0", 3, 3);
  machine.Card("0000:03:01.0");
  machine.Card("0000:03:02.0");
  machine.Get().onBoardRecords.push_back({0x29, "Onboard LAN", true, At("0000:03:02.0")});
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.PlaceOf("0000:00:1f.3"), Place::kOnBoard);
  EXPECT_EQ(resolved.PlaceOf("0000:01:00.0"), Place::kOnBoard);
  EXPECT_EQ(resolved.ReasonOf("0000:01:00.0"), "port 0000:00:1c.0 says that it leads to no slot");
  EXPECT_EQ(resolved.PlaceOf("0000:02:00.0"), Place::kUnnamedSlot);
  EXPECT_EQ(resolved.In("Port 0000:00:1c.1"), (Names{"0000:02:00.0"}));
  EXPECT_EQ(resolved.PlaceOf("0000:03:01.0"), Place::kUnknown);
  EXPECT_EQ(resolved.PlaceOf("0000:03:02.0"), Place::kOnBoard);
}

TEST(SlotPlaces, AnOnboardDeviceIsInNoSlotOfAPort) {
  MadeMachine machine;
  machine.Port("0000:00:1c.0", 1, 1, 0);
  machine.Card("0000:01:00.0");
  machine.Card("0000:01:00.1");
  machine.Port("0000:00:1c.1", 2, 2, 0);
  machine.Card("0000:02:00.0");
  machine.Get().onBoardRecords.push_back({0x29, "LAN", true, At("0000:01:00.0")});
  machine.Get().onBoardRecords.push_back({0x2A, "LAN", false, At("0000:02:00.0")});
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.PlaceOf("0000:01:00.1"), Place::kOnBoard) << "a function of that device";
  EXPECT_EQ(resolved.PlaceOf("0000:02:00.0"), Place::kUnnamedSlot) << "that device is disabled";
}

TEST(SlotPlaces, ASlotOfAPortHasTheLabelOfThePort) {
  MadeMachine machine;
  machine.Port("0000:00:1c.1", 2, 2, 0).label = "SLOT 1";
  machine.Card("0000:02:00.0");
  EXPECT_EQ(Resolved(machine).In("SLOT 1"), (Names{"0000:02:00.0"}));
}

TEST(SlotPlaces, WithoutSlotRecordsNothingIsCalledOnBoard) {
  MadeMachine machine;
  machine.Card("0000:00:1f.3", 0x0403);
  machine.Get().noRecordsBecause = "the SMBIOS tables can be read by root only";
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.PlaceOf("0000:00:1f.3"), Place::kUnknown);
  EXPECT_EQ(resolved.ReasonOf("0000:00:1f.3"), "the SMBIOS tables can be read by root only");
}

TEST(SlotPlaces, EqualNamesGetANumber) {
  MadeMachine machine;
  machine.Record("Slot", "");
  machine.Record("Slot (2)", "");
  machine.Record("Slot", "");
  machine.Record("", "");
  EXPECT_EQ(Resolved(machine).SlotNames(),
            (Names{"Slot", "Slot (2)", "Slot (3)", "SMBIOS record 0x0903"}));
}

TEST(SlotPlaces, EveryFunctionIsInAtMostOneSlot) {
  MadeMachine machine;
  AddBoardSwitch(machine, 8, 16);
  AddCardBehindPort(machine);
  machine.Record("A", "0000:00:01.1");
  machine.Record("B", "0000:64:00.0").peers = {At("0000:01:00.0")};
  machine.Record("C", "0000:66:08.0").peers = {At("0000:64:00.0")};
  const Resolved resolved(machine);
  std::set<std::size_t> seen;
  for (const Occupant& occupant : resolved.All().occupants) {
    EXPECT_TRUE(seen.insert(occupant.function).second);
    EXPECT_FALSE(occupant.evidence.empty());
  }
  for (const SharedPlace& shared : resolved.All().shared) {
    for (const std::size_t function : shared.functions) {
      EXPECT_TRUE(seen.insert(function).second);
    }
  }
}

}  // namespace
}  // namespace topology
