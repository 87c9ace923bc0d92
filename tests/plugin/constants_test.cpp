// SPDX-License-Identifier: Apache-2.0
#include "plugin/constants.h"

#include <gtest/gtest.h>

TEST(Constants, AreTheTextsThatEveryUnitCountsOn) {
  EXPECT_EQ(kPlugin, "plugin");
  EXPECT_EQ(kCmpi, "cmpi");
  EXPECT_EQ(kNspId, "nspID");
  EXPECT_EQ(kLineEnd, "\n");
  EXPECT_EQ(kListHexCommand, "lspci -xxxx");
  EXPECT_EQ(kListVerboseCommand, "lspci -vvv");
}
