// SPDX-License-Identifier: Apache-2.0

// Every allocation of a collection fails, one after the other, alone or with all that come after.
#include <gtest/gtest.h>

#include <iostream>
#include <tuple>

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
