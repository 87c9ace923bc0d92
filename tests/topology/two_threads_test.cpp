// SPDX-License-Identifier: Apache-2.0
#include "topology/two_threads.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <latch>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <vector>

namespace topology {
namespace {

using testing::ElementsAre;

using Numbers = std::span<const int>;

std::vector<int> Doubled(Numbers numbers) {
  std::vector<int> doubled;
  for (const int number : numbers) doubled.push_back(2 * number);
  return doubled;
}

TEST(ReadInHalves, KeepsTheOrderOfTheItems) {
  const std::vector<int> items{1, 2, 3, 4, 5};
  EXPECT_THAT(ReadInHalves(Numbers(items), Doubled), ElementsAre(2, 4, 6, 8, 10));
}

TEST(ReadInHalves, OfOneItemAndOfNone) {
  const std::vector<int> items{7};
  EXPECT_THAT(ReadInHalves(Numbers(items), Doubled), ElementsAre(14));
  EXPECT_TRUE(ReadInHalves(Numbers(), Doubled).empty());
}

// Each half waits until the other one has begun.
TEST(ReadInHalves, ReadsBothAtOnce) {
  const std::vector<int> items{1, 2};
  std::latch begun(2);
  const auto read = [&begun](Numbers numbers) {
    begun.arrive_and_wait();
    return Doubled(numbers);
  };
  EXPECT_THAT(ReadInHalves(Numbers(items), read), ElementsAre(2, 4));
}

TEST(ReadInHalves, PassesOnTheFailureOfEitherHalf) {
  const std::vector<int> items{1, 2};
  for (const int bad : items) {
    const auto read = [bad](Numbers numbers) {
      if (numbers.front() == bad) throw std::runtime_error("unreadable");
      return Doubled(numbers);
    };
    EXPECT_THROW(ReadInHalves(Numbers(items), read), std::runtime_error) << bad;
  }
}

void ForbidThreads() {
  constexpr uid_t kNobody = 65534;  // the limit does not hold for root
  constexpr rlimit kNone{0, 0};
  if (geteuid() == 0 && setuid(kNobody) != 0) _exit(2);
  if (setrlimit(RLIMIT_NPROC, &kNone) != 0) _exit(3);
  try {
    std::thread([] {}).join();
    _exit(4);
  } catch (const std::system_error&) {
    return;
  }
}

TEST(ReadInHalves, ReadsOneAfterTheOtherWhereNoThreadMayStart) {
  const std::vector<int> items{1, 2, 3};
  const auto readInChild = [&items] {
    ForbidThreads();
    _exit(ReadInHalves(Numbers(items), Doubled) == std::vector<int>{2, 4, 6} ? 0 : 1);
  };
  EXPECT_EXIT(readInChild(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace topology
