// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/since.h"

#include <gtest/gtest.h>

#include "host/base/errors.h"

namespace pciinfo {
namespace {

constexpr std::chrono::sys_seconds kNow =
    std::chrono::sys_days(std::chrono::year(2024) / 3 / 1) + std::chrono::hours(12);

std::string Since(const std::string& text) { return SinceTime(text, kNow); }

TEST(Since, TakesDurations) {
  EXPECT_EQ(Since("90m"), "2024-03-01 10:30:00");
  EXPECT_EQ(Since("13h"), "2024-02-29 23:00:00");
  EXPECT_EQ(Since("7d"), "2024-02-23 12:00:00");
  EXPECT_EQ(Since("2w"), "2024-02-16 12:00:00");
  EXPECT_EQ(Since("0d"), "2024-03-01 12:00:00");
}

TEST(Since, TakesTimesInUtc) {
  EXPECT_EQ(Since("2024-02-29"), "2024-02-29 00:00:00");
  EXPECT_EQ(Since("2024-02-29T07:08:09Z"), "2024-02-29 07:08:09");
  EXPECT_EQ(Since("2024-02-29T07:08:09"), "2024-02-29 07:08:09");
  EXPECT_EQ(Since("2024-02-29 07:08:09"), "2024-02-29 07:08:09");
}

TEST(Since, RefusesOtherTexts) {
  for (const char* text : {"",
                           "7",
                           "d",
                           "7y",
                           "7d ",
                           " 7d",
                           "-7d",
                           "+7d",
                           "99999999999d",
                           "4000000000w",
                           "36526d",
                           "2023-02-29",
                           "2024-13-01",
                           "2024-3-1",
                           "2024-02-29T24:00:00Z",
                           "2024-02-29T07:60:00Z",
                           "2024-02-29T07:08",
                           "2024-02-29T07:08:09+01:00",
                           "2024-02-29x07:08:09",
                           "yesterday",
                           "2024-02-+9",
                           "20240229"}) {
    EXPECT_THROW(Since(text), UsageError) << text;
  }
}

}  // namespace
}  // namespace pciinfo
