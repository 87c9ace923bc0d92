// SPDX-License-Identifier: Apache-2.0
#include "topology/second_thread.h"

#include <gtest/gtest.h>
#include <sched.h>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace topology {
namespace {

cpu_set_t UsableProcessors() {
  cpu_set_t usable;
  CPU_ZERO(&usable);
  EXPECT_EQ(sched_getaffinity(0, sizeof usable, &usable), 0);
  return usable;
}

bool AreEqual(const cpu_set_t& left, const cpu_set_t& right) { return CPU_EQUAL(&left, &right); }

// The kernel may move either thread before this looks.
bool BeginsElsewhereInOneOfManyTimes() {
  for (int i = 0; i < 100; ++i) {
    int there = -1;
    const int here = sched_getcpu();
    SecondThread([&there] { there = sched_getcpu(); }).Finish();
    if (there != here) return true;
  }
  return false;
}

TEST(SecondThread, BeginsOnAnotherProcessor) {
  const cpu_set_t usable = UsableProcessors();
  EXPECT_EQ(BeginsElsewhereInOneOfManyTimes(), CPU_COUNT(&usable) > 1);
}

TEST(SecondThread, MayUseAllProcessorsSoonAfterItHasBegun) {
  using Clock = std::chrono::steady_clock;
  const cpu_set_t usable = UsableProcessors();
  SecondThread second([&usable] {
    const auto latest = Clock::now() + std::chrono::seconds(10);
    while (!AreEqual(UsableProcessors(), usable) && Clock::now() < latest) {
      std::this_thread::yield();
    }
    EXPECT_TRUE(AreEqual(UsableProcessors(), usable));
  });
  second.Finish();
  EXPECT_TRUE(AreEqual(UsableProcessors(), usable));
}

TEST(SecondThread, WorksWhereThereIsOneProcessorOnly) {
  std::thread([] {
    cpu_set_t only;
    CPU_ZERO(&only);
    CPU_SET(sched_getcpu(), &only);
    ASSERT_EQ(sched_setaffinity(0, sizeof only, &only), 0);
    std::thread::id thread;
    SecondThread([&] {
      thread = std::this_thread::get_id();
      EXPECT_TRUE(AreEqual(UsableProcessors(), only));
    }).Finish();
    EXPECT_NE(thread, std::thread::id());
    EXPECT_NE(thread, std::this_thread::get_id());
  }).join();
}

TEST(SecondThread, PassesOnAFailure) {
  SecondThread second([] { throw std::runtime_error("unreadable"); });
  EXPECT_THROW(second.Finish(), std::runtime_error);
}

TEST(SecondThread, EndsBeforeItsObjectDoes) {
  bool hasEnded = false;
  {
    const SecondThread second([&hasEnded] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      hasEnded = true;
    });
  }
  EXPECT_TRUE(hasEnded);
}

}  // namespace
}  // namespace topology
