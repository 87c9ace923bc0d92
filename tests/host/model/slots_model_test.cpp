// SPDX-License-Identifier: Apache-2.0
#include "host/model/slots_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;
using testing::ElementsAre;

std::vector<std::string> Addresses(const std::vector<PciFunction>& functions) {
  std::vector<std::string> addresses;
  for (const PciFunction& function : functions) addresses.push_back(AddressText(function));
  return addresses;
}

void Associate(vtq::Namespace& repository, const TCIMReference& antecedent,
               const TCIMReference& dependent) {
  const auto instance = repository.Find("QZMSG_DeviceInSlot")->CreateInstance({});
  instance->SetProperty("Antecedent", TCIMValue(antecedent), {});
  instance->SetProperty("Dependent", TCIMValue(dependent), {});
  instance->Commit({});
}

TEST(SlotsModel, HasEverySlotInOrderWithItsFunctions) {
  const SlotsModel model = ReadSlots(*MakeFixedRepository());
  ASSERT_EQ(model.slots.size(), 3U);
  EXPECT_EQ(model.slots[0].tag, "Tag 1");
  EXPECT_EQ(model.slots[0].designation, "PCIEX16_1   ");
  EXPECT_EQ(model.slots[0].type, 0xb6U);
  EXPECT_EQ(model.slots[0].usage, 4U);
  EXPECT_EQ(model.slots[0].width, 13U);
  EXPECT_EQ(model.slots[0].id, 7U);
  EXPECT_EQ(model.slots[0].hotPlug, false);
  EXPECT_THAT(Addresses(model.slots[0].functions), ElementsAre("01:00.0"));
  EXPECT_TRUE(model.slots[1].functions.empty());
  EXPECT_FALSE(model.slots[2].designation.has_value());
}

TEST(SlotsModel, FunctionsOnTheBoardAreSortedByAddress) {
  EXPECT_THAT(Addresses(ReadSlots(*MakeFixedRepository()).onBoard),
              ElementsAre("00:00.0", "00:01.0", "00:02.0", "00:1f.3"));
}

TEST(SlotsModel, FunctionsInASlotAreSortedByAddress) {
  const auto repository = MakeFixedRepository();
  const auto slot = repository->Find("QZMSG_SystemSlot")->GetInstances()[1]->GetObjectReference({});
  for (const auto& device : repository->Find("QZMSG_PCIDevice")->GetInstances()) {
    Associate(*repository, slot, device->GetObjectReference({}));
  }
  EXPECT_THAT(Addresses(ReadSlots(*repository).slots[1].functions),
              ElementsAre("00:02.0", "00:1f.3", "01:00.0"));
}

TEST(SlotsModel, AnUnpublishedFunctionHasOnlyItsPath) {
  const auto repository = MakeFixedRepository();
  const auto slot = repository->Find("QZMSG_SystemSlot")->GetInstances()[2]->GetObjectReference({});
  Associate(*repository, slot,
            TCIMReference("root/cimv2", "QZMSG_PCIDevice", {{"K", TCIMValue("v")}}));
  EXPECT_THAT(Addresses(ReadSlots(*repository).slots[2].functions),
              ElementsAre("/root/cimv2:QZMSG_PCIDevice.K=\"v\""));
}

TEST(SlotsModel, OfAnEmptyRepositoryIsEmpty) {
  const SlotsModel model = ReadSlots(*MakeEmptyRepository());
  EXPECT_TRUE(model.slots.empty());
  EXPECT_TRUE(model.onBoard.empty());
}

}  // namespace
}  // namespace pciinfo
