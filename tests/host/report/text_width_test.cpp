// SPDX-License-Identifier: Apache-2.0
#include "host/report/text_width.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

constexpr Font kFont{Face::kSans, 10};

TEST(TextWidth, AddsTheWidthsOfTheCharacters) {
  EXPECT_EQ(TextWidth("", kFont), 0);
  EXPECT_NEAR(TextWidth("ii", kFont), 2 * 10 * 569 / 2048.0, 1e-9);
  EXPECT_NEAR(TextWidth("~", kFont), 10 * 1716 / 2048.0, 1e-9);
  EXPECT_GT(TextWidth("Slot", {Face::kBold, 10}), TextWidth("Slot", kFont));
  EXPECT_NEAR(TextWidth("iW", {Face::kMono, 10}), 2 * 6.1, 1e-9);
}

TEST(TextWidth, IsGuessedForOtherScripts) {
  EXPECT_FALSE(IsWidthGuessed("Fa\u00e7onn\u00e9 \u2026"));
  EXPECT_TRUE(IsWidthGuessed("a \ufdfd"));
  EXPECT_NEAR(TextWidth("\u4e2d\u6587", kFont), 22, 1e-9);
}

TEST(ShortenedTo, KeepsBothEnds) {
  EXPECT_EQ(ShortenedTo("short", 100, kFont), "short");
  const std::string text = ShortenedTo("The first words and the last", 80, kFont);
  EXPECT_LE(TextWidth(text, kFont), 80);
  EXPECT_GT(TextWidth(text, kFont), 60);
  EXPECT_TRUE(text.starts_with("The f")) << text;
  EXPECT_TRUE(text.ends_with("last")) << text;
  EXPECT_NE(text.find("\u2026"), std::string::npos);
}

TEST(ShortenedTo, CutsNoCharacterInTwo) {
  std::string text;
  for (int i = 0; i < 10000; ++i) text += "\u00e4";
  const std::string shortened = ShortenedTo(text, 100, kFont);
  EXPECT_LE(TextWidth(shortened, kFont), 100);
  EXPECT_EQ(shortened.find("\u00e4"), 0U);
  EXPECT_EQ(ShortenedTo("\u00e4\u00e4\u00e4", 0, kFont), "\u2026");
}

TEST(BrokenInto, BreaksBetweenWords) {
  const std::string text = "one two three four five six seven";
  EXPECT_EQ(BrokenInto(2, "one", 100, kFont), std::vector<std::string>{"one"});
  const auto lines = BrokenInto(2, text, 90, kFont);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0], "one two three");
  EXPECT_TRUE(lines[1].starts_with("four")) << lines[1];
  for (const std::string& line : lines) EXPECT_LE(TextWidth(line, kFont), 90);
  const auto word = BrokenInto(2, std::string(60, 'm'), 90, kFont);
  ASSERT_EQ(word.size(), 1U);
  EXPECT_LE(TextWidth(word[0], kFont), 90);
}

}  // namespace
}  // namespace pciinfo
