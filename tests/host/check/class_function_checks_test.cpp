// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/class_facts_maker.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr PciAddress kDevice{3, 0, 0};
constexpr VendorAndDevice kIds{0x8086, 0x1533};

TEST(CheckFunctions, PciBusMissing) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("pci-bus-missing", facts), IsEmpty());
  facts.hasPciBus = false;
  facts.isCapture = true;
  EXPECT_THAT(Details("pci-bus-missing", facts), ElementsAre("/proc/bus/pci: not in this capture"));
}

TEST(CheckFunctions, ListUnreadable) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("list-unreadable", facts), IsEmpty());
  facts.list.reset();
  EXPECT_THAT(Doubtful("list-unreadable", facts), ElementsAre("/proc/bus/pci/devices"));
  facts.hasPciBus = false;
  EXPECT_THAT(Doubtful("list-unreadable", facts), IsEmpty());
}

TEST(CheckFunctions, SysfsMissing) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("sysfs-missing", facts), IsEmpty());
  facts.hasSysfs = false;
  EXPECT_THAT(Doubtful("sysfs-missing", facts), ElementsAre("/sys/bus/pci/devices"));
  facts.hasPciBus = false;
  EXPECT_THAT(Doubtful("sysfs-missing", facts), IsEmpty());
}

TEST(CheckFunctions, DomainMissing) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("domain-missing", facts), IsEmpty());
  facts.functions[{0x10000, {9, 0, 0}}] = {kIds, {}};
  facts.functions[{1, kDevice}] = {VendorAndDevice{0x10de, 1}, {}};
  EXPECT_THAT(Details("domain-missing", facts),
              ElementsAre("0001:03:00.0: 10de:0001", "10000:09:00.0: 8086:1533"));
}

TEST(CheckFunctions, DomainMixedUp) {
  ClassFacts facts = MakeSoundFacts();
  facts.functions[{1, {9, 0, 0}}] = {kIds, {}};
  facts.functions[{1, {0, 1, 0}}] = {};  // without identifiers it matches no function
  EXPECT_THAT(Doubtful("domain-mixed-up", facts), IsEmpty());
  facts.functions[{1, kDevice}] = {kIds, {}};
  EXPECT_THAT(Doubtful("domain-mixed-up", facts), ElementsAre("0001:03:00.0"));
  EXPECT_THAT(Doubtful("domain-missing", facts), ElementsAre("0001:00:01.0", "0001:09:00.0"));
}

TEST(CheckFunctions, AddressRepeated) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("address-repeated", facts), IsEmpty());
  facts.list->insert(facts.list->end(), 2, facts.list->front());
  EXPECT_THAT(Doubtful("address-repeated", facts), ElementsAre("03:00.0"));
}

TEST(CheckFunctions, FunctionUnpublished) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("function-unpublished", facts), IsEmpty());
  facts.functions[{0, {7, 0, 0}}] = {};
  facts.list->push_back({{8, 0, 0}, kIds, {}, {}});
  facts.list->push_back({{9, 0, 0}, kIds, {}, {}});
  facts.configurations[{9, 0, 0}] = {kIds, false};
  EXPECT_THAT(Details("function-unpublished", facts),
              ElementsAre("07:00.0: the kernel's list does not name it",
                          "08:00.0: its configuration cannot be read", "09:00.0: "));
  facts.list.reset();
  EXPECT_THAT(Details("function-unpublished", facts),
              ElementsAre("07:00.0: the kernel's list cannot be read"));
}

TEST(CheckFunctions, AFunctionOfAnotherDomainHasOneFinding) {
  ClassFacts facts = MakeSoundFacts();
  facts.functions[{1, {9, 0, 0}}] = {kIds, {}};
  facts.list->push_back({{9, 0, 0}, kIds, {}, {}});
  EXPECT_THAT(Doubtful("function-unpublished", facts), IsEmpty());
}

TEST(CheckFunctions, IdsDisagree) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("ids-disagree", facts), IsEmpty());
  facts.configurations[kDevice].ids = {0xFFFF, 0xFFFF};
  EXPECT_THAT(Details("ids-disagree", facts),
              ElementsAre("03:00.0: list 8086:1533, configuration ffff:ffff, sysfs 8086:1533"));
  facts.configurations.erase(kDevice);
  EXPECT_THAT(Doubtful("ids-disagree", facts), IsEmpty());
  facts.functions[{0, kDevice}].ids->device = 1;
  EXPECT_THAT(Details("ids-disagree", facts),
              ElementsAre("03:00.0: list 8086:1533, sysfs 8086:0001"));
  facts.functions[{1, kDevice}] = {kIds, {}};  // now the line may describe this function
  EXPECT_THAT(Doubtful("ids-disagree", facts), IsEmpty());
}

TEST(CheckFunctions, ListingMissing) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("listing-missing", facts), IsEmpty());
  facts.listingFailure = "it printed nothing";
  EXPECT_THAT(Details("listing-missing", facts), ElementsAre("lspci: it printed nothing"));
}

TEST(CheckFunctions, DescriptionMissing) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("description-missing", facts), IsEmpty());
  facts.published[0].function.description = "PCI Vendor ID 32902  PCI Device ID 5427";
  facts.published[1].function.description = "";
  EXPECT_THAT(Details("description-missing", facts),
              ElementsAre("03:00.0: 8086:1533", "00:01.0: 8086:1533"));
}

TEST(CheckFunctions, ConfigurationShort) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("configuration-short", facts), IsEmpty());
  facts.configurations[kDevice].isHeaderOnly = true;
  EXPECT_THAT(Doubtful("configuration-short", facts), ElementsAre("03:00.0"));
}

}  // namespace
}  // namespace pciinfo
