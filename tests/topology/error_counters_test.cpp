// SPDX-License-Identifier: Apache-2.0
#include "topology/error_counters.h"

#include <gtest/gtest.h>

namespace topology {
namespace {

using Texts = std::vector<std::string>;

TEST(ErrorCounters, AreThoseThatAreNotZeroAndTheTotal) {
  const auto counters =
      ParseErrorCounters("RxErr 0\nBadTLP 3\nBadDLLP 1\nTimeout 0\nTOTAL_ERR_COR 4\n");
  ASSERT_TRUE(counters);
  EXPECT_EQ(counters->total, 4U);
  EXPECT_EQ(counters->nonZero, (Texts{"BadTLP 3", "BadDLLP 1"}));
}

TEST(ErrorCounters, AddUpWhereTheKernelGivesNoTotal) {
  const auto counters = ParseErrorCounters("Receiver Error 2\nBad TLP 3");
  ASSERT_TRUE(counters);
  EXPECT_EQ(counters->total, 5U);
  EXPECT_EQ(counters->nonZero, (Texts{"Receiver Error 2", "Bad TLP 3"}));
}

TEST(ErrorCounters, OfATextWithoutCountsAreNotKnown) {
  EXPECT_FALSE(ParseErrorCounters(""));
  EXPECT_FALSE(ParseErrorCounters("\n \nRxErr\nRxErr many\n 5\nRxErr -1\nRxErr 1x\n"));
  EXPECT_FALSE(ParseErrorCounters("RxErr 99999999999999999999999\n"));
}

}  // namespace
}  // namespace topology
