// SPDX-License-Identifier: Apache-2.0

// Slots that only ACPI knows of: it gives a port, or the card behind one, a slot user number.

#include <gtest/gtest.h>

#include "tests/topology/resolved_machine.h"

namespace topology {
namespace {

TEST(AcpiSlots, ANumberedPortLeadsToASlot) {
  MadeMachine machine;
  machine.Port("0000:00:1c.0", 1, 1).slotUserNumber = 7;
  machine.Card("0000:01:00.0");
  machine.Card("0000:01:00.1");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("ACPI slot 7"), kCard);
  EXPECT_EQ(resolved.SlotNamed("ACPI slot 7").source, SlotSource::kAcpi);
  EXPECT_EQ(resolved.SlotNamed("ACPI slot 7").state, SlotState::kOccupied);
  EXPECT_EQ(resolved.CertaintyOf("0000:01:00.1"), Certainty::kLikely);
  EXPECT_EQ(resolved.EvidenceOf("0000:01:00.1"),
            "ACPI slot user number 7 names port 0000:00:1c.0; 0000:01:00.1 is behind it");
  EXPECT_EQ(resolved.PlaceOf("0000:01:00.0"), Place::kSlot);
}

TEST(AcpiSlots, TheFunctionsOfACardShareTheNumber) {
  MadeMachine machine;
  machine.Port("0000:00:1c.0", 1, 1);
  machine.Card("0000:01:00.0").slotUserNumber = 7;
  machine.Card("0000:01:00.1").slotUserNumber = 7;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("ACPI slot 7"), kCard);
  EXPECT_EQ(resolved.EvidenceOf("0000:01:00.1"),
            "ACPI slot user number 7 names 0000:01:00.0 behind port 0000:00:1c.0; 0000:01:00.1 is "
            "behind it");
}

TEST(AcpiSlots, TheNumberOfAnEmptySlotIsOnItsPort) {
  MadeMachine machine;
  machine.Port("0000:00:1c.0", 1, 1).slotUserNumber = 7;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNamed("ACPI slot 7").state, SlotState::kEmpty);
}

TEST(AcpiSlots, TheLabelOfThePortIsTheName) {
  MadeMachine machine;
  Function& port = machine.Port("0000:00:1c.0", 1, 1);
  port.slotUserNumber = 7;
  port.label = "SLOT 1";
  machine.Card("0000:01:00.0");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNamed("SLOT 1").source, SlotSource::kAcpi);
}

TEST(AcpiSlots, RecordsAndKernelSlotsNameTheSlotInstead) {
  MadeMachine machine;
  machine.Port("0000:00:1c.0", 1, 1).slotUserNumber = 7;
  machine.Card("0000:01:00.0");
  machine.Port("0000:00:1c.1", 2, 2).slotUserNumber = 8;
  machine.Card("0000:02:00.0");
  machine.Record("PCIE1", "0000:01:00.0");
  machine.KernelSlotAt("8", "0000:02:00");
  EXPECT_EQ(Resolved(machine).SlotNames(), (Names{"PCIE1", "8"}));
}

TEST(AcpiSlots, APortWithoutTheSlotBitLeadsToASolderedDevice) {
  MadeMachine machine;
  machine.Port("0000:00:1c.0", 1, 1, -1).slotUserNumber = 7;
  machine.Card("0000:01:00.0").slotUserNumber = 7;
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.SlotNames().empty());
  EXPECT_EQ(resolved.PlaceOf("0000:01:00.0"), Place::kOnBoard);
}

TEST(AcpiSlots, AnOnboardDeviceIsInNone) {
  MadeMachine machine;
  machine.Port("0000:00:1c.0", 1, 1).slotUserNumber = 7;
  machine.Card("0000:01:00.0");
  machine.Bridge("0000:00:1e.0", 2, 2);
  machine.Card("0000:02:01.0").slotUserNumber = 8;
  machine.Get().onBoardRecords.push_back({0x29, "LAN", true, At("0000:01:00.0")});
  machine.Get().onBoardRecords.push_back({0x2A, "VGA", true, At("0000:02:01.0")});
  EXPECT_TRUE(Resolved(machine).SlotNames().empty());
}

class NoNumberTest : public testing::TestWithParam<std::uint64_t> {};

TEST_P(NoNumberTest, NamesNoSlot) {
  MadeMachine machine;
  machine.Port("0000:00:1c.0", 1, 1).slotUserNumber = GetParam();
  machine.Card("0000:01:00.0");
  EXPECT_EQ(Resolved(machine).SlotNames(), (Names{"Port 0000:00:1c.0"}));
}

INSTANTIATE_TEST_SUITE_P(NobodyFilledIn, NoNumberTest,
                         testing::Values(0, 0xFF, 0xFFFF, 0xFFFFFFFF, ~std::uint64_t{0}));

TEST(AcpiSlots, ANumberThatTwoPortsHaveNamesNeither) {
  MadeMachine machine;
  machine.Port("0000:00:1c.0", 1, 1).slotUserNumber = 7;
  machine.Port("0000:00:1c.1", 2, 2);
  machine.Card("0000:02:00.0").slotUserNumber = 7;
  EXPECT_EQ(Resolved(machine).SlotNames(), (Names{"Port 0000:00:1c.0", "Port 0000:00:1c.1"}));
}

TEST(AcpiSlots, TwoNumbersOfOnePortNameNone) {
  MadeMachine machine;
  machine.Port("0000:00:1c.0", 1, 1).slotUserNumber = 7;
  machine.Card("0000:01:00.0").slotUserNumber = 8;
  EXPECT_EQ(Resolved(machine).SlotNames(), (Names{"Port 0000:00:1c.0"}));
}

TEST(AcpiSlots, WhatIsFurtherBehindACardDoesNotNumberThePort) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 3);
  machine.Port("0000:01:00.0", 2, 3, -1, PortType::kUpstreamPort);
  machine.Port("0000:02:00.0", 3, 3, -1, PortType::kDownstreamPort);
  machine.Card("0000:03:00.0").slotUserNumber = 5;
  EXPECT_EQ(Resolved(machine).SlotNames(), (Names{"Port 0000:00:01.0"}));
}

TEST(AcpiSlots, PortsOfASwitchOfTheBoardHaveSlotsInsideTheOneOfTheRootPort) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 4).slotUserNumber = 1;
  machine.Port("0000:01:00.0", 2, 4, -1, PortType::kUpstreamPort);
  machine.Port("0000:02:00.0", 3, 3, 0, PortType::kDownstreamPort).slotUserNumber = 2;
  machine.Port("0000:02:01.0", 4, 4, 0, PortType::kDownstreamPort);
  machine.Card("0000:03:00.0");
  machine.Card("0000:04:00.0");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("ACPI slot 2"), (Names{"0000:03:00.0"}));
  EXPECT_TRUE(resolved.SlotNamed("ACPI slot 2").outer.has_value());
  EXPECT_TRUE(resolved.In("ACPI slot 1").contains("0000:04:00.0")) << "ACPI does not number it";
}

TEST(AcpiSlots, ACardInANamedSlotHasNoSlotsOfItsOwn) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 3);
  machine.Port("0000:01:00.0", 2, 3, -1, PortType::kUpstreamPort);
  machine.Port("0000:02:00.0", 3, 3, 4, PortType::kDownstreamPort).slotUserNumber = 4;
  machine.Card("0000:03:00.0");
  machine.Record("Slot 1", "0000:00:01.0");
  EXPECT_EQ(Resolved(machine).SlotNames(), (Names{"Slot 1"}));
}

TEST(AcpiSlots, ADeviceOnAConventionalBusIsInOne) {
  MadeMachine machine;
  machine.Bridge("0000:00:1e.0", 2, 2);
  machine.Card("0000:02:01.0").slotUserNumber = 3;
  machine.Card("0000:02:01.1");
  machine.Card("0000:02:02.0");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("ACPI slot 3"), (Names{"0000:02:01.0", "0000:02:01.1"}));
  EXPECT_EQ(resolved.PlaceOf("0000:02:02.0"), Place::kUnknown);
}

TEST(AcpiSlots, ADeviceOnAConventionalRootBusIsInOne) {
  MadeMachine machine;
  machine.Card("0000:00:01.0", 0x0601);
  machine.Card("0000:00:02.0", 0x0100).slotUserNumber = 2;
  machine.Card("0000:00:03.0").slotUserNumber = 3;
  for (Function& function : machine.Get().functions) function.config.express.reset();
  machine.Get().functions[2].config.capabilitiesKnown = false;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNames(), (Names{"ACPI slot 2"})) << "only root sees capabilities";
  EXPECT_EQ(resolved.In("ACPI slot 2"), (Names{"0000:00:02.0"}));
}

// Some emulators number every device of their only bus.
TEST(AcpiSlots, ABusWhoseHostBridgeIsNumberedHasNone) {
  MadeMachine machine;
  machine.Card("0000:00:00.0", 0x0600).slotUserNumber = 0;
  machine.Card("0000:00:01.0", 0x0100).slotUserNumber = 1;
  machine.Card("0000:00:02.0").slotUserNumber = 2;
  for (Function& function : machine.Get().functions) function.config.express.reset();
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.SlotNames().empty());
  EXPECT_EQ(resolved.PlaceOf("0000:00:01.0"), Place::kUnknown);
}

TEST(AcpiSlots, WhatStandsOnTheBusOfARootComplexIsSoldered) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 1, -1);
  machine.Card("0000:00:02.0", 0x0300).slotUserNumber = 2;
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.SlotNames().empty());
  EXPECT_EQ(resolved.PlaceOf("0000:00:02.0"), Place::kOnBoard);
}

// The kernel makes one slot of each device with numbers, whatever the functions of it.
TEST(AcpiSlots, TellTheFunctionsOfAKernelSlotsDeviceApart) {
  MadeMachine machine;
  machine.Port("0000:00:02.0", 2, 2).slotUserNumber = 5;
  machine.Port("0000:00:02.1", 3, 3).slotUserNumber = 6;
  machine.Card("0000:02:00.0");
  machine.Card("0000:03:00.0");
  machine.KernelSlotAt("5", "0000:00:02");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("5"), (Names{"0000:02:00.0"}));
  EXPECT_EQ(resolved.EvidenceOf("0000:02:00.0"),
            "kernel slot 5 has the ACPI slot user number of port 0000:00:02.0; 0000:02:00.0 is "
            "behind it");
  EXPECT_EQ(resolved.CertaintyOf("0000:02:00.0"), Certainty::kLikely);
  EXPECT_EQ(resolved.In("ACPI slot 6"), (Names{"0000:03:00.0"}));
}

}  // namespace
}  // namespace topology
