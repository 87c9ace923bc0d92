// SPDX-License-Identifier: Apache-2.0
#include "host/report/parts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

MachineFunction Bridge(unsigned bus, unsigned device, unsigned behind, const char* type) {
  MachineFunction bridge;
  bridge.address = {0, {bus, device, 0}};
  bridge.baseClass = 6;
  bridge.subclass = 4;
  bridge.headerType = 1;
  bridge.portType = type;
  bridge.buses = BridgeBuses{behind, behind};
  bridge.deviceName = type;
  bridge.link.maxWidth = 16;
  bridge.link.maxSpeed = "16.0 GT/s";
  return bridge;
}

MachineFunction Card(unsigned bus, const DomainAddress& port, unsigned width) {
  MachineFunction card;
  card.address = {0, {bus, 0, 0}};
  card.baseClass = 1;
  card.subclass = 8;
  card.deviceName = "NVMe drive";
  card.parentPort = port;
  card.link = {width, "8.0 GT/s", 4, "8.0 GT/s"};
  return card;
}

/// Root ports with a drive behind each but the last.
MachineModel MachineOfDrives(unsigned ports) {
  MachineModel machine;
  for (unsigned i = 1; i <= ports; ++i) machine.functions.push_back(Bridge(0, i, i, "root port"));
  for (unsigned i = 1; i < ports; ++i) {
    machine.functions.push_back(Card(i, {0, {0, i, 0}}, i == 1 ? 2 : 4));
  }
  return machine;
}

std::vector<PartGroup> PartsOfMachine(const MachineModel& machine) {
  return PartsOf(MakePortTree(machine), machine);
}

TEST(Parts, OfTheFixedMachine) {
  const auto groups = PartsOfMachine(ReadMachine(*MakeTopologyRepository()));
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].title, "Bus 00");
  EXPECT_EQ(groups[0].note, "");
  const Part& graphics = groups[0].parts[0];
  EXPECT_EQ(graphics.kind, PartKind::kPort);
  EXPECT_EQ(graphics.slot, "PCIEX16_1");
  ASSERT_EQ(graphics.behind.size(), 1U);
  EXPECT_EQ(graphics.behind[0].name, "NVIDIA GP104 [GeForce GTX 1080] + audio");
  EXPECT_EQ(graphics.behind[0].address, "01:00.0-1");
  const Part& shared = groups[0].parts[1];
  EXPECT_EQ(shared.slot, "PCIEX4_1 or PCIEX4_2");
  EXPECT_EQ(shared.behind[0].functions.size(), 3U);  // with the virtual function
  const PartGroup unplaced = SlotsWithoutPort(ReadMachine(*MakeTopologyRepository()));
  ASSERT_FALSE(unplaced.parts.empty());
  EXPECT_EQ(unplaced.parts[0].slot, "PCIEX1");
  EXPECT_TRUE(unplaced.parts[0].isEmpty);
}

TEST(Parts, TellLinksOfBothEnds) {
  const auto parts = PartsOfMachine(MachineOfDrives(3))[0].parts;
  ASSERT_EQ(parts.size(), 3U);
  const PartLink& narrow = *parts[0].link;
  EXPECT_TRUE(narrow.isNarrow);
  EXPECT_EQ(narrow.widthText, "x2 of x4");
  EXPECT_EQ(narrow.possible, 4U);
  EXPECT_EQ(narrow.speedText, "8 GT/s");
  EXPECT_FALSE(parts[1].link->isNarrow);
  EXPECT_EQ(parts[1].link->widthText, "x4");
}

TEST(Parts, CountPortsThatLeadNowhere) {
  const auto parts = PartsOfMachine(MachineOfDrives(3))[0].parts;
  EXPECT_EQ(parts[2].kind, PartKind::kGroup);
  EXPECT_EQ(parts[2].name, "1 port with nothing behind it");
}

TEST(Parts, OfSwitchesHaveTheirPorts) {
  MachineModel machine;
  machine.functions = {Bridge(0, 1, 1, "root port"), Bridge(1, 0, 2, "switch upstream port"),
                       Bridge(2, 0, 3, "switch downstream port"), Card(3, {0, {2, 0, 0}}, 4)};
  machine.functions[1].parentPort = machine.functions[0].address;
  machine.functions[2].parentPort = machine.functions[1].address;
  const auto parts = PartsOfMachine(machine)[0].parts;
  const Part& inside = parts[0].behind[0];
  EXPECT_EQ(inside.kind, PartKind::kSwitch);
  EXPECT_EQ(inside.behind[0].kind, PartKind::kPort);
  EXPECT_EQ(inside.behind[0].behind[0].kind, PartKind::kCard);
}

TEST(Parts, OfABridgeOnACardHaveItsSlot) {
  MachineModel machine;
  machine.functions = {Bridge(0, 1, 1, "root port"), Bridge(1, 0, 2, "PCIe to PCI bridge")};
  machine.functions[1].parentPort = machine.functions[0].address;
  MachineSlot slot;
  slot.name = "PCI 1";
  slot.state = SlotState::kEmpty;
  slot.ports = {"0000:01:00.0"};
  machine.slots = {slot};
  const Part bridge = PartsOfMachine(machine)[0].parts[0].behind[0];
  ASSERT_EQ(bridge.behind.size(), 1U);
  EXPECT_EQ(bridge.behind[0].kind, PartKind::kSlot);
  EXPECT_EQ(bridge.behind[0].slot, "PCI 1");
  EXPECT_TRUE(SlotsWithoutPort(machine).parts.empty());
}

TEST(Parts, OfASlotWhosePortIsMissing) {
  MachineModel machine;
  MachineSlot slot;
  slot.name = "PCI 1";
  slot.ports = {"0000:01:00.0"};
  machine.slots = {slot};
  EXPECT_EQ(SlotsWithoutPort(machine).parts.size(), 1U);
}

TEST(Parts, OfOneKindAreFolded) {
  auto groups = PartsOfMachine(MachineOfDrives(9));
  EXPECT_EQ(CountParts(groups), 8U + 8 + 1);
  FoldParts(groups);
  // The narrow link stays apart.
  const auto& parts = groups[0].parts;
  ASSERT_EQ(parts.size(), 3U);
  EXPECT_EQ(parts[0].count, 1U);
  EXPECT_EQ(parts[1].count, 7U);
  EXPECT_EQ(parts[1].address, "00:02.0 \u2026 00:08.0");
  EXPECT_EQ(parts[1].behind[0].count, 7U);
  EXPECT_EQ(parts[1].behind[0].functions.size(), 7U);
}

TEST(Parts, FewOfOneKindAreNotFolded) {
  auto groups = PartsOfMachine(MachineOfDrives(4));
  const std::size_t count = CountParts(groups);
  FoldParts(groups);
  EXPECT_EQ(CountParts(groups), count);
}

TEST(Parts, OfSeveralNodesSayWhichIsTheirs) {
  MachineModel machine = MachineOfDrives(2);
  MachineFunction other = Bridge(0x80, 1, 0x81, "root port");
  other.numaNode = 1;
  machine.functions.push_back(other);
  machine.functions.push_back(Card(0x81, other.address, 4));
  for (int i = 0; i < 2; ++i) machine.functions[static_cast<std::size_t>(i)].numaNode = 0;
  const auto groups = PartsOfMachine(machine);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].note, "NUMA node 0");
  EXPECT_EQ(groups[1].note, "NUMA node 1");
}

}  // namespace
}  // namespace pciinfo
