// SPDX-License-Identifier: Apache-2.0

// Records whose address tells nothing, and the numbers that may tell all the same; slots of the
// kernel.

#include <gtest/gtest.h>

#include "tests/topology/resolved_machine.h"

namespace topology {
namespace {

class PlaceholderTest : public testing::TestWithParam<NamedAddress> {};

TEST_P(PlaceholderTest, MeansNothing) {
  MadeMachine machine;
  machine.Card("0000:00:00.0", 0x0600);
  machine.Card("0000:00:01.0", 0x0600);
  machine.Card("0000:00:1f.0", 0x0601);
  machine.Port("0000:00:1c.0", 2, 2);
  machine.Card("0000:ff:0b.0", 0x1101);
  AddCardBehindPort(machine);
  machine.Record("Slot 1", GetParam().address);
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.In("Slot 1").empty());
  EXPECT_EQ(resolved.SlotNamed("Slot 1").state, SlotState::kUnknown);
  EXPECT_FALSE(resolved.SlotNamed("Slot 1").noTargetBecause.empty());
  EXPECT_EQ(resolved.PlaceOf("0000:01:00.0"), Place::kUnnamedSlot);
}

INSTANTIATE_TEST_SUITE_P(Firmware, PlaceholderTest,
                         testing::Values(NamedAddress{"LastBus", "0000:ff:1f.7"},
                                         NamedAddress{"NoBus", "0000:ee:00.0"},
                                         NamedAddress{"HostBridge", "0000:00:00.0"},
                                         NamedAddress{"TemplateHostBridge", "0000:00:01.0"},
                                         NamedAddress{"ChipsetFunction", "0000:00:1f.7"},
                                         NamedAddress{"HiddenPort", "0000:00:1c.4"},
                                         NamedAddress{"MissingDevice", "0000:00:1e.0"},
                                         NamedAddress{"ProcessorRegister", "0000:ff:0b.0"},
                                         NamedAddress{"NoAddress", ""},
                                         NamedAddress{"AllOnes", "ffff:ff:1f.7"}),
                         [](const auto& test) { return test.param.what; });

TEST(SlotNumbers, PlaceholdersAreFoundByAPhysicalSlotNumberThatOnePortHas) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.1", 1, 3);
  machine.Record("Slot 3", "0000:ff:1f.7", 3);
  machine.Record("Slot 4", "0000:ff:1f.7", 4);
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 3"), kCard);
  EXPECT_EQ(resolved.CertaintyOf("0000:01:00.0"), Certainty::kLikely);
  EXPECT_TRUE(resolved.SlotNamed("Slot 4").targets.empty());
}

TEST(SlotNumbers, ANumberThatTwoPortsHaveTellsNothing) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.1", 1, 3);
  AddCardBehindPort(machine, "0000:00:01.2", 2, 3);
  machine.Record("Slot 3", "0000:ff:1f.7", 3);
  EXPECT_TRUE(Resolved(machine).In("Slot 3").empty());
}

TEST(SlotNumbers, ANumberThatTwoRecordsHaveTellsNothing) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.1", 1, 3);
  machine.Record("A", "0000:ff:1f.7", 3);
  machine.Record("B", "0000:ff:1f.7", 3);
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.In("A").empty());
  EXPECT_TRUE(resolved.In("B").empty());
}

TEST(SlotNumbers, NumbersThatARecordContradictsAreNotBelieved) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.1", 1, 3);
  AddCardBehindPort(machine, "0000:00:01.2", 2, 7);
  machine.Record("Slot 3", "0000:ff:1f.7", 3);
  machine.Record("Slot 5", "0000:02:00.0", 5);
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.In("Slot 3").empty()) << "slot 5 has port number 7";
  EXPECT_FALSE(resolved.In("Slot 5").empty());
}

TEST(SlotNumbers, ANumberOfAPortInsideASlotTellsNothing) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 3);
  machine.Port("0000:01:00.0", 2, 3, -1, PortType::kUpstreamPort);
  machine.Port("0000:02:00.0", 3, 3, 4, PortType::kDownstreamPort);
  machine.Card("0000:03:00.0");
  machine.Record("Slot 1", "0000:00:01.0");
  machine.Record("Slot 4", "0000:ff:1f.7", 4);
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.In("Slot 4").empty()) << "the card has a switch with slots";
  EXPECT_EQ(resolved.In("Slot 1").size(), 3U);
}

TEST(SlotNumbers, AConventionalSlotIsNotOnALink) {
  MadeMachine machine;
  machine.Port("0000:00:1c.6", 2, 3, 6);
  machine.Port("0000:02:00.0", 3, 3, -1, PortType::kExpressToPciBridge);
  machine.Record("PCI 6", "0000:ff:1f.7", 6).type = 0x06;
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.In("PCI 6").empty()) << "the bridge is soldered";
  EXPECT_EQ(resolved.SlotNamed("PCI 6").targets.size(), 1U);
}

TEST(SlotNumbers, AcpiNumbersOnThePortOrOnTheCardTell) {
  MadeMachine machine;
  machine.Port("0000:00:01.1", 1, 1).slotUserNumber = 3;
  machine.Card("0000:01:00.0");
  machine.Port("0000:00:01.2", 2, 2);
  machine.Card("0000:02:00.0").slotUserNumber = 4;
  machine.Port("0000:00:01.3", 3, 5);
  machine.Port("0000:03:00.0", 4, 5, -1, PortType::kUpstreamPort);
  machine.Card("0000:04:00.0").slotUserNumber = 5;
  for (const unsigned id : {3U, 4U, 5U}) {
    machine.Record("Slot " + std::to_string(id), "0000:ff:1f.7", id);
  }
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 3"), (Names{"0000:01:00.0"}));
  EXPECT_EQ(resolved.In("Slot 4"), (Names{"0000:02:00.0"}));
  EXPECT_TRUE(resolved.In("Slot 5").empty()) << "its parent is no port";
}

TEST(SlotNumbers, KernelSlotsTell) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Record("Slot 12", "0000:ff:1f.7", 12);
  machine.KernelSlotAt("12-1", "0000:01:00");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 12"), kCard);
  EXPECT_EQ(resolved.SlotNamed("Slot 12").kernelSlots.size(), 1U);
  EXPECT_EQ(resolved.SlotNames(), (Names{"Slot 12"}));
}

TEST(SlotNumbers, AKernelSlotOfAConventionalBusIsThatOfTheRecord) {
  MadeMachine machine;
  machine.Bridge("0000:00:1e.0", 8, 8);
  machine.Card("0000:08:01.0");
  machine.Record("PCI1", "0000:08:01.0");
  machine.KernelSlotAt("1", "0000:08:01");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNames(), (Names{"PCI1"}));
  EXPECT_EQ(resolved.SlotNamed("PCI1").kernelSlots.size(), 1U);
  EXPECT_EQ(resolved.In("PCI1"), (Names{"0000:08:01.0"}));
}

TEST(SlotNumbers, ABifurcatedSlotHasTheKernelSlotsOfAllItsPorts) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.0", 1);
  AddCardBehindPort(machine, "0000:00:01.1", 2);
  machine.Record("Wide", "0000:01:00.0").peers = {At("0000:02:00.0")};
  machine.KernelSlotAt("1", "0000:01:00");
  machine.KernelSlotAt("2", "0000:02:00");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNames(), (Names{"Wide"}));
  EXPECT_EQ(resolved.SlotNamed("Wide").kernelSlots, (std::vector<std::size_t>{0, 1}));
}

TEST(SlotNumbers, KernelSlotsWithoutARecordAreSlotsOfTheirOwn) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Port("0000:00:02.0", 2, 2);
  machine.Port("0000:00:02.1", 3, 3);
  machine.KernelSlotAt("5", "0000:01:00");
  machine.KernelSlotAt("6", "0000:00:02");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("5"), kCard);
  EXPECT_EQ(resolved.SlotNamed("5").source, SlotSource::kKernelSlot);
  EXPECT_EQ(resolved.SlotNamed("6").noTargetBecause,
            "kernel slot 6 is a device with several ports");
}

}  // namespace
}  // namespace topology
