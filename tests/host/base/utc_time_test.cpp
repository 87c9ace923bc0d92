// SPDX-License-Identifier: Apache-2.0
#include "host/base/utc_time.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

TEST(UtcTime, IsWrittenInOneForm) {
  EXPECT_EQ(UtcText(0), "1970-01-01T00:00:00Z");
  EXPECT_EQ(UtcText(1709210096), "2024-02-29T12:34:56Z");
}

TEST(UtcTime, IsRecognisedInThatFormOnly) {
  EXPECT_TRUE(IsUtcText("2024-02-29T12:34:56Z"));
  for (const char* text :
       {"", "x", "2024-02-29", "2024-02-29T12:34:56", "2024-02-29T12:34:56+00:00",
        "2024-02-29 12:34:56Z", "2024-02-29T12:34:56Z ", "2024-2-29T12:34:56Z",
        "2023-02-29T12:34:56Z", "2024-02-29T24:00:00Z"}) {
    EXPECT_FALSE(IsUtcText(text)) << text;
  }
}

}  // namespace
}  // namespace pciinfo
