// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/class_facts_maker.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr PciAddress kOwner{3, 0, 0};

/// Facts without findings, except for region 2 of the device.
ClassFacts WithRegion(std::uint64_t base, std::uint64_t size) {
  ClassFacts facts = MakeSoundFacts();
  facts.list->front().bases[2] = base;
  facts.list->front().sizes[2] = size;
  return facts;
}

TEST(CheckRegions, RegionAddressWide) {
  EXPECT_THAT(Doubtful("region-address-wide", WithRegion(0xFFFFFFF0, 16)), IsEmpty());
  EXPECT_THAT(Details("region-address-wide", WithRegion(0x10000000c, 16)),
              ElementsAre("03:00.0: region 2 at 0x100000000"));
}

TEST(CheckRegions, RegionSizeWide) {
  EXPECT_THAT(Doubtful("region-size-wide", WithRegion(0xC, 0xFFFFFFFF)), IsEmpty());
  EXPECT_THAT(Details("region-size-wide", WithRegion(0xE000000C, 0x100000000)),
              ElementsAre("03:00.0: region 2 of 0x100000000 bytes"));
}

TEST(CheckRegions, IoRegionWide) {
  EXPECT_THAT(Doubtful("io-region-wide", WithRegion(0xFFFD, 0x40)), IsEmpty());
  EXPECT_THAT(Doubtful("io-region-wide", WithRegion(0xE0000000, 0x100000)), IsEmpty());
  EXPECT_THAT(Details("io-region-wide", WithRegion(0x10001, 0x40)),
              ElementsAre("03:00.0: region 2 at 0x10000 of 0x40 bytes"));
  EXPECT_THAT(Details("io-region-wide", WithRegion(0x1001, 0x10000)),
              ElementsAre("03:00.0: region 2 at 0x1000 of 0x10000 bytes"));
}

TEST(CheckRegions, IoRegionAsMemory) {
  ClassFacts facts = WithRegion(0x1F0, 8);
  EXPECT_THAT(Doubtful("io-region-as-memory", facts), IsEmpty());
  facts.functions[{0, kOwner}].isIo[2] = true;
  EXPECT_THAT(Details("io-region-as-memory", facts), ElementsAre("03:00.0: region 2 at 0x1f0"));
  facts.list->front().bases[2] |= 1;
  EXPECT_THAT(Doubtful("io-region-as-memory", facts), IsEmpty());
}

TEST(CheckRegions, IgnoresRegionsThatAreNotPublished) {
  ClassFacts facts = WithRegion(0x10000000C, 0x100000000);
  facts.published[0].function.kind = "bridge";
  EXPECT_THAT(Doubtful("region-address-wide", facts), IsEmpty());
  facts.published.clear();
  EXPECT_THAT(Doubtful("region-size-wide", facts), IsEmpty());
  EXPECT_THAT(Doubtful("region-size-wide", WithRegion(0, 0x100000000)), IsEmpty());
}

}  // namespace
}  // namespace pciinfo
