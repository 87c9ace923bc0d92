// SPDX-License-Identifier: Apache-2.0
#include "host/process/progress_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/host/run_on_terminal.h"
#include "tests/runtime/temporary_directory.h"

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(ProgressLine, TellsWhatTakesLongAndIsErased) {
  const RunResult result = RunOnTerminal(
      {{"slots", "--no-pager", "--timeout", "6", "--only-plugin", FakePluginFile("hostile")},
       {{"HOSTILE", "Hang VTQ_PCISlot"}}});
  const std::string line = "pciinfo: collecting VTQ_PCISlot (";
  ASSERT_THAT(result.out, HasSubstr(line));
  const std::size_t shown = result.out.find(line);
  const std::size_t erased = result.out.find("\r\x1B[K\r", shown);
  ASSERT_NE(erased, std::string::npos);
  EXPECT_LT(erased, result.out.find("On board"));
}

TEST(ProgressLine, IsNotShownForAMoment) {
  using Clock = std::chrono::steady_clock;
  RunResult result;
  Clock::duration taken = std::chrono::hours(1);
  // A busy machine may take longer than a moment for it.
  for (int round = 0; round < 20 && taken >= std::chrono::seconds(1); ++round) {
    const Clock::time_point start = Clock::now();
    result =
        RunOnTerminal({{"devices", "--no-pager", "--only-plugin", FakePluginFile("fixed")}, {}});
    taken = Clock::now() - start;
  }
  EXPECT_THAT(result.out, Not(HasSubstr("collecting")));
}

TEST(ProgressLine, IsNotShownWhereNobodyLooks) {
  const RunResult result = RunHostile("Hang VTQ_PCISlot", {"slots", "--timeout", "4"});
  EXPECT_THAT(result.err, Not(HasSubstr("collecting")));
}

TEST(ProgressLine, GivesWayToTheLog) {
  const RunResult result = RunOnTerminal({{"slots", "--no-pager", "--timeout", "4", "--log-level",
                                           "3", "--only-plugin", FakePluginFile("hostile")},
                                          {{"HOSTILE", "Hang VTQ_PCISlot"}}});
  EXPECT_THAT(result.out, Not(HasSubstr("pciinfo: collecting")));
}

TEST(ProgressLine, IsNeverDueWhenItIsNotWanted) {
  pciinfo::ProgressLine line(false);
  line.Tell("something");
  EXPECT_FALSE(line.GetDueTime());
}

TEST(ProgressLine, SaysWhichSideADiffCollects) {
  const vtq::TemporaryDirectory directory;
  const std::string other = directory.Write("other.json", "{\"instances\":[]}");
  const RunResult result = RunOnTerminal({{"diff", "live", other, "--no-pager", "--timeout", "4",
                                           "--only-plugin", FakePluginFile("hostile")},
                                          {{"HOSTILE", "Hang QZMSG_SystemSlot"}}});
  EXPECT_THAT(result.out, HasSubstr("pciinfo: live: collecting QZMSG_SystemSlot ("));
}

}  // namespace
