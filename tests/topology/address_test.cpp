// SPDX-License-Identifier: Apache-2.0
#include "topology/address.h"

#include <gtest/gtest.h>

namespace topology {
namespace {

TEST(TopologyAddress, IsReadAndWrittenAsTheKernelDoes) {
  for (const char* text : {"0000:00:00.0", "0000:ff:1f.7", "10000:01:00.0", "ffffffff:3b:0a.3"}) {
    const auto address = ParseAddress(text);
    ASSERT_TRUE(address) << text;
    EXPECT_EQ(ToText(*address), text);
  }
}

TEST(TopologyAddress, OtherTextsAreNone) {
  for (const char* text :
       {"", "0000", "000:00:00.0", "0000:0:00.0", "0000:00:0.0", "0000:00:20.0", "0000:00:00.8",
        "0000:00:00", "0000:00:00.", "0000:00:00.00", "0000:00:00.0 ", " 0000:00:00.0",
        "123456789:00:00.0", "0000:g0:00.0", "0000-00-00.0", "-000:00:00.0", "0x00:00:00.0"}) {
    EXPECT_FALSE(ParseAddress(text)) << text;
  }
}

TEST(TopologyAddress, OfADeviceHasNoFunction) {
  EXPECT_EQ(ParseDeviceAddress("0001:3b:1f"), (Address{1, 0x3B, 0x1F, 0}));
  EXPECT_FALSE(ParseDeviceAddress("0001:3b:1f.0"));
  EXPECT_FALSE(ParseDeviceAddress("0001:3b"));
}

TEST(TopologyAddress, AreOrderedByDomainThenBusThenDevice) {
  EXPECT_LT(*ParseAddress("0000:ff:00.0"), *ParseAddress("0001:00:00.0"));
  EXPECT_LT(*ParseAddress("0000:01:1f.7"), *ParseAddress("0000:02:00.0"));
  EXPECT_TRUE(IsSameDevice(*ParseAddress("0000:01:02.0"), *ParseAddress("0000:01:02.7")));
  EXPECT_FALSE(IsSameDevice(*ParseAddress("0000:01:02.0"), *ParseAddress("0001:01:02.0")));
}

}  // namespace
}  // namespace topology
