// SPDX-License-Identifier: Apache-2.0
#include "host/cli/suggestion.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

const std::vector<std::string> kNames = {"devices", "slots", "show", "diff"};

TEST(Suggestion, IsTheNearestName) {
  EXPECT_EQ(NearestOf("device", kNames), "devices");
  EXPECT_EQ(NearestOf("dev", kNames), "devices");
  EXPECT_EQ(NearestOf("slost", kNames), "slots");
  EXPECT_EQ(NearestOf("shwo", kNames), "show");
  EXPECT_EQ(NearestOf("idff", kNames), "diff");
}

TEST(Suggestion, IsMissingWhereNothingIsNear) {
  for (const std::string& word : {std::string("nosuch"), std::string("x"), std::string(),
                                  std::string(100, 'd'), std::string("zz")}) {
    EXPECT_EQ(NearestOf(word, kNames), "") << word;
  }
}

}  // namespace
}  // namespace pciinfo
