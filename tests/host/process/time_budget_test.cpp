// SPDX-License-Identifier: Apache-2.0
#include "host/process/time_budget.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

using namespace std::chrono_literals;

const TimeBudget::Clock::time_point kStart{};

TEST(TimeBudget, AStepGetsHalfOfWhatIsLeft) {
  const TimeBudget budget(10s, kStart);
  EXPECT_EQ(budget.TimeOf(1, false, kStart), 5s);
  EXPECT_EQ(budget.TimeOf(2, false, kStart + 4s), 3s);
}

TEST(TimeBudget, TheLastStepGetsAll) {
  EXPECT_EQ(TimeBudget(10s, kStart).TimeOf(7, true, kStart + 4s), 6s);
}

TEST(TimeBudget, NothingIsLeftAtTheEnd) {
  EXPECT_EQ(TimeBudget(10s, kStart).TimeOf(1, true, kStart + 11s), 0s);
}

TEST(TimeBudget, AStepThatWasDoneBeforeMayBeDoneAgain) {
  TimeBudget budget(10s, kStart);
  budget.NoteDone(1, 3s);
  EXPECT_EQ(budget.TimeOf(1, false, kStart + 10s), 11s);
  EXPECT_EQ(budget.TimeOf(2, false, kStart + 10s), 0s);
  budget.NoteDone(1, 0s);
  EXPECT_EQ(budget.TimeOf(1, false, kStart), 5s);
}

}  // namespace
}  // namespace pciinfo
