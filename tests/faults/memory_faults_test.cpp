// SPDX-License-Identifier: Apache-2.0

// Every allocation of a collection fails, one after the other, alone or with all that come after;
// so does every one of the text that printed machines begin with.
#include <gtest/gtest.h>

#include <iostream>
#include <new>
#include <tuple>

#include "host/record/machine_stamp.h"
#include "tests/faults/apart.h"
#include "tests/faults/fallbacks.h"

namespace {

enum class Lasting { kNo, kYes };

class MemoryFaults : public testing::TestWithParam<std::tuple<std::string, Lasting>> {
 protected:
  void SetUp() override { BecomeMediumMachine(); }
};

TEST_P(MemoryFaults, EachIsToldAndCostsNoMoreThanItMust) {
  Round round{Call::kAllocate};
  round.className = std::get<std::string>(GetParam());
  round.lasting = std::get<Lasting>(GetParam()) == Lasting::kYes;
  const unsigned faults = RunRounds(round, JudgeToldFallbacks);
  EXPECT_GT(faults, 0U);
  std::cout << faults << " faults\n";
}

TEST(StampFaults, EachIsThrownAndNoneEndsTheProcess) {
  const pciinfo::MachineStamp stamp{"rack-12.example.org", {}, "2026-01-31T23:59:59Z"};
  unsigned number = 0;
  do {
    ++number;
    const EndApart apart = RunApart([&](std::string& failure) {
      Arm({Call::kAllocate, number});
      bool isThrown = false;
      try {
        (void)StampText(stamp);
      } catch (const std::bad_alloc&) {
        isThrown = true;
      }
      Disarm();
      if (HasStruck() && !isThrown) failure = "it hides that memory is missing";
      return 0;
    });
    EXPECT_EQ(apart.failure, "") << number;
  } while (HasStruck());
  EXPECT_GT(number, 3U);
}

std::string TestName(const testing::TestParamInfo<std::tuple<std::string, Lasting>>& info) {
  return std::get<std::string>(info.param);
}

INSTANTIATE_TEST_SUITE_P(Once, MemoryFaults,
                         testing::Combine(testing::ValuesIn(Classes()),
                                          testing::Values(Lasting::kNo)),
                         TestName);
INSTANTIATE_TEST_SUITE_P(FromThenOn, MemoryFaults,
                         testing::Combine(testing::ValuesIn(Classes()),
                                          testing::Values(Lasting::kYes)),
                         TestName);

}  // namespace
