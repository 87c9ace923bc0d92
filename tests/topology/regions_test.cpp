// SPDX-License-Identifier: Apache-2.0
#include "topology/regions.h"

#include <gtest/gtest.h>

namespace topology {
namespace {

TEST(Resources, AreRegionsWithNumberStartSizeAndFlags) {
  const std::vector<Region> regions = ParseResources(
      "0x00000000fc000000 0x00000000fcffffff 0x0000000000040200\n"
      "0x0000000000000000 0x0000000000000000 0x0000000000000000\n"
      "0x000000e000000000 0x000000ffffffffff 0x000000000014220c\n");
  ASSERT_EQ(regions.size(), 2U);
  EXPECT_EQ(regions[0].number, 0U);
  EXPECT_EQ(regions[0].start, 0xFC000000U);
  EXPECT_EQ(regions[0].size, 0x1000000U);
  EXPECT_EQ(regions[1].number, 2U);
  EXPECT_EQ(regions[1].start, 0xE000000000U);
  EXPECT_EQ(regions[1].size, 0x2000000000U);
  EXPECT_EQ(regions[1].flags, 0x14220CU);
}

TEST(Resources, LinesThatAreNoneAreLeftOut) {
  EXPECT_TRUE(ParseResources("").empty());
  EXPECT_TRUE(ParseResources("\n\nnothing\n0x1 0x2\n").empty());
  const std::vector<Region> odd = ParseResources("bad\n0x20 0x10 0x200");
  ASSERT_EQ(odd.size(), 1U);
  EXPECT_EQ(odd[0].number, 1U);
  EXPECT_EQ(odd[0].size, 0U) << "the end stands before the start";
}

}  // namespace
}  // namespace topology
