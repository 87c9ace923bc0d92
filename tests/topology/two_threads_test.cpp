// SPDX-License-Identifier: Apache-2.0
#include "topology/two_threads.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <latch>
#include <numeric>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <vector>

namespace topology {
namespace {

using Numbers = std::span<const int>;

std::vector<int> Doubled(Numbers numbers) {
  std::vector<int> doubled;
  for (const int number : numbers) doubled.push_back(2 * number);
  return doubled;
}

std::vector<int> UpTo(int last) {
  std::vector<int> numbers(static_cast<std::size_t>(last));
  std::iota(numbers.begin(), numbers.end(), 1);
  return numbers;
}

// The threads take eight items at a time.
TEST(ReadOnTwoThreads, KeepsTheOrderOfTheItems) {
  for (const int last : {0, 1, 7, 8, 9, 16, 1001}) {
    const std::vector<int> items = UpTo(last);
    EXPECT_EQ(ReadOnTwoThreads(Numbers(items), Doubled), Doubled(items)) << last;
  }
}

// Each part waits until the other one has begun.
TEST(ReadOnTwoThreads, ReadsOnBothAtOnce) {
  const std::vector<int> items = UpTo(9);
  std::latch begun(2);
  const auto read = [&begun](Numbers numbers) {
    begun.arrive_and_wait();
    return Doubled(numbers);
  };
  EXPECT_EQ(ReadOnTwoThreads(Numbers(items), read), Doubled(items));
}

TEST(ReadOnTwoThreads, ReadsWhileThisThreadDoesAnotherThing) {
  const std::vector<int> items = UpTo(1);
  std::latch begun(2);
  const auto wait = [&begun] { begun.arrive_and_wait(); };
  const auto read = [&wait](Numbers numbers) {
    wait();
    return Doubled(numbers);
  };
  const auto thisThread = std::this_thread::get_id();
  EXPECT_EQ(ReadOnTwoThreads(Numbers(items), read,
                             [&] {
                               wait();
                               EXPECT_EQ(std::this_thread::get_id(), thisThread);
                             }),
            Doubled(items));
}

TEST(ReadOnTwoThreads, PassesOnTheFailureOfAnyPart) {
  const std::vector<int> items = UpTo(32);
  for (const int bad : {1, 9, 17, 25}) {
    const auto read = [bad](Numbers numbers) {
      if (numbers.front() == bad) throw std::runtime_error("unreadable");
      return Doubled(numbers);
    };
    EXPECT_THROW(ReadOnTwoThreads(Numbers(items), read), std::runtime_error) << bad;
  }
}

TEST(ReadOnTwoThreads, PassesOnTheFailureOfTheOtherThing) {
  const std::vector<int> items = UpTo(32);
  const auto fail = [] { throw std::runtime_error("unreadable"); };
  EXPECT_THROW(ReadOnTwoThreads(Numbers(items), Doubled, fail), std::runtime_error);
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

TEST(ReadOnTwoThreads, ReadsOnThisOneWhereNoThreadMayStart) {
  const std::vector<int> items = UpTo(20);
  const auto readInChild = [&items] {
    ForbidThreads();
    int calls = 0;
    const auto results = ReadOnTwoThreads(Numbers(items), Doubled, [&calls] { ++calls; });
    _exit(results == Doubled(items) && calls == 1 ? 0 : 1);
  };
  EXPECT_EXIT(readInChild(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace topology
