// SPDX-License-Identifier: Apache-2.0

// Every system call that a collection makes fails once, one after the other.
#include <gtest/gtest.h>

#include <iostream>
#include <tuple>

#include "tests/faults/fallbacks.h"

namespace {

// Only the end of the list ends the scan; a host limits the time of a collection.
constexpr const char* kDeviceList = "/proc/bus/pci/devices";

class SystemFaults : public testing::TestWithParam<std::tuple<Call, Tools>> {
 protected:
  void SetUp() override { BecomeMediumMachine(); }
};

TEST_P(SystemFaults, EachIsToldAndCostsNoMoreThanItMust) {
  Round round{std::get<Call>(GetParam())};
  round.tools = std::get<Tools>(GetParam());
  if (round.call == Call::kRead) round.endlessPlace = kDeviceList;
  const unsigned faults = RunRounds(round, JudgeToldFallbacks);
  EXPECT_GT(faults, 0U);
  std::cout << faults << " faults\n";
}

std::string TestName(const testing::TestParamInfo<std::tuple<Call, Tools>>& info) {
  std::string name = NameOf(std::get<Call>(info.param));
  for (char& c : name) c = c == ' ' ? '_' : c;
  return name;
}

INSTANTIATE_TEST_SUITE_P(
    LiveTools, SystemFaults,
    testing::Combine(testing::Values(Call::kOpen, Call::kRead, Call::kShortRead, Call::kClose,
                                     Call::kPipe, Call::kStart, Call::kDie, Call::kQuit),
                     testing::Values(Tools::kLive)),
    TestName);

INSTANTIATE_TEST_SUITE_P(RecordedTools, SystemFaults,
                         testing::Combine(testing::Values(Call::kOpen, Call::kRead,
                                                          Call::kShortRead, Call::kClose),
                                          testing::Values(Tools::kRecorded)),
                         TestName);

}  // namespace
