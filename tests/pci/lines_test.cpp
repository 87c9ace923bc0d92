// SPDX-License-Identifier: Apache-2.0
#include "pci/lines.h"

#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

Texts Lines(std::string_view text) {
  Texts lines;
  for (const NQZMVTQ20::TCIMValue& line : SplitLines(text)) lines.emplace_back(line.GetString());
  return lines;
}

}  // namespace

TEST(SplitLines, EmptyLinesAreKept) { EXPECT_EQ(Lines("a\n\nb\n"), (Texts{"a", "", "b"})); }

TEST(SplitLines, LeadingEmptyLineIsKept) { EXPECT_EQ(Lines("\na\n"), (Texts{"", "a"})); }

TEST(SplitLines, TextBehindTheLastLineEndIsDropped) { EXPECT_EQ(Lines("a\nb"), Texts{"a"}); }

TEST(SplitLines, TextWithoutLineEndHasNoLines) { EXPECT_EQ(Lines("a"), Texts{}); }

TEST(SplitLines, EmptyTextHasNoLines) { EXPECT_EQ(Lines(""), Texts{}); }

TEST(SplitLines, LineEndAloneIsOneEmptyLine) { EXPECT_EQ(Lines("\n"), Texts{""}); }

TEST(SplitLines, OtherCharactersStay) {
  const std::string line("\ta b\r\0c", 7);
  EXPECT_EQ(Lines(line + "\n"), Texts{line});
}

TEST(SplitLines, JoinedLinesGiveTheTextAgain) {
  std::string text;
  for (std::size_t line = 0; line < 1000; ++line) text += std::string(line % 7, 'x') + "\n";
  std::string joined;
  for (const std::string& line : Lines(text)) joined += line + "\n";
  EXPECT_EQ(joined, text);
}
