// SPDX-License-Identifier: Apache-2.0
#include "runtime/service_failures.h"

#include <gtest/gtest.h>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "tests/runtime/failure_of.h"
#include "tests/runtime/observed_failures.h"
#include "tests/runtime/temporary_directory.h"

namespace vtq {
namespace {

using NQZMVTQ20::TOSSpecific;
using NQZMVTQ20::TVTQException;

constexpr const char* kMissingFile = "/no/such/file";
constexpr const char* kMissingCommand = "no-such-program-here";

TEST(ServiceFailuresTest, TheObserverHearsEveryFailureWithItsText) {
  const ObservedFailures observed;
  const Failure file = FailureOf([] { (void)TOSSpecific::CaptureFile(kMissingFile); });
  const Failure command = FailureOf([] { (void)TOSSpecific::SpawnProcess(kMissingCommand, 1); });
  EXPECT_EQ(observed.Get(), (std::vector<std::string>{file.text, command.text}));
}

TEST(ServiceFailuresTest, AServiceThatSucceedsTellsNothing) {
  const ObservedFailures observed;
  (void)TOSSpecific::CaptureFile("/proc/self/stat");
  (void)TOSSpecific::SpawnProcess("true", 5);
  (void)TOSSpecific::FileExists(kMissingFile);
  EXPECT_TRUE(observed.Get().empty());
}

TEST(ServiceFailuresTest, OutputOfACommandThatFailsIsDoubtful) {
  const TemporaryDirectory directory;
  const std::string tool = directory.WriteScript("tool", "echo x\necho no access >&2\nexit 3");
  const ObservedFailures observed;
  std::vector<std::string> doubts;
  ObserveDoubtfulOutputs([&doubts](const std::string& doubt) { doubts.push_back(doubt); });
  EXPECT_EQ(TOSSpecific::SpawnProcess(tool, 5), "x\n");
  (void)TOSSpecific::SpawnProcess("true", 5);
  ObserveDoubtfulOutputs(nullptr);
  EXPECT_EQ(doubts,
            std::vector{"the command \"" + tool +
                        "\" exited with status 3, so its output may be incomplete: no access"});
  EXPECT_TRUE(observed.Get().empty());
}

TEST(ServiceFailuresTest, WithoutAnObserverTheFailureIsThrownAllTheSame) {
  ObserveServiceFailures(nullptr);
  EXPECT_THROW((void)TOSSpecific::CaptureFile(kMissingFile), TVTQException);
}

TEST(ServiceFailuresTest, AnObserverThatThrowsDoesNotChangeTheFailure) {
  ObserveServiceFailures([](const std::string&) { throw 1; });
  EXPECT_THROW((void)TOSSpecific::CaptureFile(kMissingFile), TVTQException);
  ObserveServiceFailures(nullptr);
}

}  // namespace
}  // namespace vtq
