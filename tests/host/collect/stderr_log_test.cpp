// SPDX-License-Identifier: Apache-2.0
#include "host/collect/stderr_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pciinfo {
namespace {

using NQZMVTQ20::ILogger;

std::string Shown(std::optional<int> level, bool collecting) {
  TroubleReport report(Circumstances{});
  if (collecting) report.BeginClass("A");
  const vtq::LogSink sink = MakeStderrSink(level, report);
  testing::internal::CaptureStderr();
  for (int severity = 0; severity <= 4; ++severity) {
    sink(static_cast<ILogger::EVTQLogSeverity>(severity), "text\t\x1b");
  }
  return testing::internal::GetCapturedStderr();
}

TEST(StderrLog, ShowsErrorsAndWarningsByDefault) {
  EXPECT_EQ(Shown({}, false), "0 text ?\n1 text ?\n");
}

TEST(StderrLog, LeavesRecordsOfACollectionToTheReportByDefault) { EXPECT_EQ(Shown({}, true), ""); }

TEST(StderrLog, ShowsEverythingUpToTheLevelAskedFor) {
  EXPECT_EQ(Shown(0, true), "0 text ?\n");
  EXPECT_EQ(Shown(3, true), "0 text ?\n1 text ?\n2 text ?\n3 text ?\n");
  EXPECT_EQ(Shown(3, false), Shown(3, true));
}

}  // namespace
}  // namespace pciinfo
