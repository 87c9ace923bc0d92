// SPDX-License-Identifier: Apache-2.0
#include "host/machine/machine_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/machine/function_details.h"
#include "host/machine/machine_filter.h"
#include "host/machine/port_tree.h"
#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

MachineModel FixedMachine() { return ReadMachine(*MakeTopologyRepository()); }

std::vector<std::string> Addresses(const MachineModel& machine) {
  std::vector<std::string> addresses;
  for (const MachineFunction& function : machine.functions) {
    addresses.push_back(FormatAddress(function.address));
  }
  return addresses;
}

std::vector<std::string> SlotNames(const MachineModel& machine) {
  std::vector<std::string> names;
  for (const MachineSlot& slot : machine.slots) names.push_back(slot.name);
  return names;
}

MachineModel Kept(const std::string& filter) { return KeptOf(FixedMachine(), Filter({filter})); }

TEST(MachineModel, HasTheFunctionsByAddress) {
  const MachineModel machine = FixedMachine();
  ASSERT_EQ(machine.functions.size(), 12U);
  EXPECT_TRUE(std::is_sorted(
      machine.functions.begin(), machine.functions.end(),
      [](const auto& left, const auto& right) { return left.address < right.address; }));
  const MachineFunction* card = machine.Find({0, {1, 0, 0}});
  ASSERT_NE(card, nullptr);
  EXPECT_EQ(card->vendorId, 0x10deU);
  EXPECT_EQ(card->link.width, 8U);
  EXPECT_EQ(card->link.maxSpeed, "16.0 GT/s");
  EXPECT_EQ(card->parentPort, (DomainAddress{0, {0, 1, 0}}));
  EXPECT_EQ(card->place, FunctionPlace::kSlot);
  EXPECT_EQ(card->certainty, "certain");
  EXPECT_EQ(card->evidence, "0000:01:00.0 is behind the port");
  EXPECT_EQ(machine.slots[*card->slot].name, "PCIEX16_1");
  EXPECT_EQ(machine.Find({1, {1, 0, 0}}), nullptr);
  EXPECT_FALSE(machine.HasDomains());
}

TEST(MachineModel, HasTheSlotsAndSharedPorts) {
  const MachineModel machine = FixedMachine();
  ASSERT_EQ(machine.slots.size(), 7U);
  EXPECT_EQ(machine.slots[0].state, SlotState::kOccupied);
  EXPECT_EQ(machine.slots[0].functions.size(), 2U);
  EXPECT_THAT(machine.slots[0].ports, ElementsAre("0000:00:01.0"));
  EXPECT_EQ(machine.slots[3].state, SlotState::kEmpty);
  EXPECT_FALSE(machine.slots[6].IsNamed());
  ASSERT_EQ(machine.shared.size(), 1U);
  EXPECT_THAT(machine.shared[0].slots, ElementsAre("PCIEX4_1", "PCIEX4_2"));
  EXPECT_EQ(machine.FunctionsOf(machine.shared[0].functions).size(), 3U);
  EXPECT_EQ(machine.FunctionsAt(FunctionPlace::kUnknown).size(), 1U);
}

TEST(MachineModel, IsEmptyWithoutTheClasses) {
  const MachineModel machine = ReadMachine(*MakeEmptyRepository());
  EXPECT_THAT(machine.functions, IsEmpty());
  EXPECT_THAT(machine.slots, IsEmpty());
}

TEST(MachineModel, LeavesOutPropertiesThatTheClassLacks) {
  auto repository = vtq::Namespace::Create("root/cimv2");
  vtq::ClassSchema schema;
  schema.name = "VTQ_PCIFunction";
  const NQZMVTQ20::TCIMValue::TCIMType text(NQZMVTQ20::TCIMValue::TCIMType::kString);
  const vtq::PropertySchema address{"Address", text, false, true, {}, ""};
  const vtq::PropertySchema vendor{"VendorID", text, false,
                                   false,      {},   ""};  // not the expected number
  schema.properties = {address, vendor};
  repository->Declare(schema);
  for (const char* name : {"0000:01:00.0", "no address"}) {
    const auto instance = repository->Find("VTQ_PCIFunction")->CreateInstance({});
    instance->SetProperty("Address", NQZMVTQ20::TCIMValue(name), {});
    instance->SetProperty("VendorID", NQZMVTQ20::TCIMValue("8086"), {});
    instance->Commit({});
  }
  const MachineModel machine = ReadMachine(*repository);
  ASSERT_EQ(machine.functions.size(), 1U);
  EXPECT_EQ(machine.functions[0].vendorId, std::nullopt);
  EXPECT_EQ(machine.functions[0].place, FunctionPlace::kUnknown);
}

TEST(MachineFilter, KeepsFunctionsAndTheirSlots) {
  const MachineModel kept = Kept("vendor=10de");
  EXPECT_THAT(Addresses(kept), ElementsAre("0000:01:00.0", "0000:01:00.1"));
  EXPECT_THAT(SlotNames(kept), ElementsAre("PCIEX16_1"));
  EXPECT_THAT(kept.slots[0].functions, ElementsAre(0U, 1U));
  EXPECT_EQ(kept.functions[1].slot, 0U);
  EXPECT_THAT(kept.shared, IsEmpty());
}

TEST(MachineFilter, FindsFunctionsByEveryKey) {
  EXPECT_THAT(Addresses(Kept("kind=bridge,bus=0")),
              ElementsAre("0000:00:00.0", "0000:00:01.0", "0000:00:01.1", "0000:00:1c.0"));
  EXPECT_THAT(Addresses(Kept("class=0108")), ElementsAre("0000:03:00.0"));
  EXPECT_THAT(Addresses(Kept("device=5678")), ElementsAre("0000:04:00.0"));
  EXPECT_THAT(Addresses(Kept("address=03:00.0")), ElementsAre("0000:03:00.0"));
  EXPECT_THAT(Addresses(Kept("address=0000:03:00")), ElementsAre("0000:03:00.0"));
  EXPECT_THAT(Addresses(Kept("address=0001:03:00.0")), IsEmpty());
}

TEST(MachineFilter, FindsSlotsByNameAndNumber) {
  EXPECT_THAT(SlotNames(Kept("slot=pciex1")), ElementsAre("PCIEX1"));
  EXPECT_THAT(SlotNames(Kept("slot=4")), ElementsAre("PCIEX1"));
  EXPECT_THAT(Addresses(Kept("slot=PCIEX16_1")), ElementsAre("0000:01:00.0", "0000:01:00.1"));
}

TEST(MachineFilter, TakesASharedPortForEachOfItsSlots) {
  EXPECT_EQ(Kept("slot=PCIEX4_2").functions.size(), 3U);
  EXPECT_EQ(Kept("slot=PCIEX4_2").shared.size(), 1U);
  const auto outside = Addresses(Kept("slot=none"));
  EXPECT_THAT(outside, testing::Not(testing::Contains("0000:02:00.0")));
  EXPECT_THAT(outside, testing::Contains("0000:04:00.0"));
}

TEST(FunctionDetails, FindTheFunctionOfAKernelDevice) {
  const auto repository = MakeTopologyRepository();
  EXPECT_THAT(FunctionsWithDevice(*repository, "eth0"), ElementsAre(DomainAddress{0, {2, 0, 0}}));
  EXPECT_THAT(FunctionsWithDevice(*repository, "eth1"), IsEmpty());
  EXPECT_NE(ReadDetails(*repository, {0, {2, 0, 0}}).instance, nullptr);
  EXPECT_EQ(ReadDetails(*repository, {0, {1, 0, 0}}).instance, nullptr);
}

TEST(PortTree, HasEveryFunctionBehindItsPort) {
  const MachineModel machine = FixedMachine();
  const auto tree = MakePortTree(machine);
  ASSERT_EQ(tree.size(), 2U);
  EXPECT_EQ(tree[0].bus, 0U);
  EXPECT_EQ(tree[1].bus, 4U);  // no port leads there
  ASSERT_EQ(tree[0].nodes.size(), 5U);
  EXPECT_EQ(tree[0].nodes[1].behind.size(), 2U);
  EXPECT_EQ(tree[0].nodes[2].behind.size(), 3U);
}

TEST(PortTree, EndsWherePortsNameEachOther) {
  MachineModel machine;
  machine.functions.resize(2);
  machine.functions[0].address = {0, {1, 0, 0}};
  machine.functions[1].address = {0, {1, 1, 0}};
  machine.functions[0].parentPort = machine.functions[1].address;
  machine.functions[1].parentPort = machine.functions[0].address;
  const auto tree = MakePortTree(machine);
  ASSERT_EQ(tree.size(), 1U);
  EXPECT_EQ(tree[0].nodes.size(), 2U);
}

TEST(PortTree, FoldsFourNeighboursOfOneModel) {
  MachineModel machine;
  machine.functions.resize(4);
  for (unsigned i = 0; i < 4; ++i) machine.functions[i].address = {0, {1, i, 0}};
  auto tree = MakePortTree(machine);
  FoldAlike(tree);
  ASSERT_EQ(tree[0].nodes.size(), 1U);
  EXPECT_EQ(tree[0].nodes[0].functions.size(), 4U);
  machine.functions[3].place = FunctionPlace::kOnBoard;
  tree = MakePortTree(machine);
  FoldAlike(tree);
  EXPECT_EQ(tree[0].nodes.size(), 4U);
}

TEST(PortTree, KeepsTheBridgesAboveKeptFunctions) {
  const MachineModel machine = FixedMachine();
  auto tree = MakePortTree(machine);
  Prune(tree, [](const MachineFunction& function) { return function.vendorId == 0x144d; });
  ASSERT_EQ(tree.size(), 1U);
  ASSERT_EQ(tree[0].nodes.size(), 1U);
  EXPECT_EQ(tree[0].nodes[0].behind.size(), 1U);
}

}  // namespace
}  // namespace pciinfo
