// SPDX-License-Identifier: Apache-2.0
#include "host/console/text.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

TEST(Text, PrintableReplacesControlCharacters) {
  EXPECT_EQ(Printable("a\x1b[31mb\nc\x7f"), "a?[31mb?c?");
  EXPECT_EQ(Printable(std::string_view("nul\0", 4)), "nul?");
  EXPECT_EQ(Printable("\xe2\x80\xae"
                      "fdp"),
            "?fdp");
}

TEST(Text, PrintableShowsATabAsASpace) { EXPECT_EQ(Printable("\ta\tb"), " a b"); }

TEST(Text, PrintableReadsInvalidUtf8AsLatin1) {
  EXPECT_EQ(Printable("caf\xe9"), "caf\xc3\xa9");
  EXPECT_EQ(Printable("x\x85"), "x?");
}

TEST(Text, DisplayWidthCountsColumnsNotBytes) {
  EXPECT_EQ(DisplayWidth("abc"), 3U);
  EXPECT_EQ(DisplayWidth("gr\xc3\xbcn"), 4U);
  EXPECT_EQ(DisplayWidth("e\xcc\x81"), 1U);                 // combining acute accent
  EXPECT_EQ(DisplayWidth("\xe6\x97\xa5\xe6\x9c\xac"), 4U);  // two wide characters
}

// Plain texts take a fast path; one other character makes the text take the slow one.
TEST(Text, PlainTextIsUnchanged) {
  const std::string other = "gr\xc3\xbcn";
  for (int byte = 0; byte < 0x80; ++byte) {
    const std::string text = std::string("a b") + static_cast<char>(byte) + "~ ";
    EXPECT_EQ(Printable(text) + other, Printable(text + other)) << byte;
    EXPECT_EQ(DisplayWidth(text) + 4, DisplayWidth(text + other)) << byte;
  }
  EXPECT_EQ(Printable(""), "");
  EXPECT_EQ(DisplayWidth(""), 0U);
}

TEST(Text, PadRightFillsUpToTheWidth) {
  EXPECT_EQ(PadRight("\xc3\xbc", 3), "\xc3\xbc  ");
  EXPECT_EQ(PadRight("longer", 3), "longer");
}

TEST(Text, CutKeepsWhatFits) {
  EXPECT_EQ(Cut("abcdef", 6), "abcdef");
  EXPECT_EQ(Cut("", 0), "");
}

TEST(Text, CutEndsLongTextInAnEllipsis) {
  EXPECT_EQ(Cut("abcdefg", 6), "abc...");
  EXPECT_EQ(Cut("abcdefg", 2), "..");
}

TEST(Text, CutNeverSplitsACharacter) {
  EXPECT_EQ(Cut("\xc3\xbc\xc3\xbc\xc3\xbc\xc3\xbc\xc3\xbc", 4), "\xc3\xbc...");
  EXPECT_EQ(Cut("\xe6\x97\xa5\xe6\x9c\xac\xe6\x97\xa5", 5), "\xe6\x97\xa5...");
  EXPECT_EQ(Cut("\xe6\x97\xa5\xe6\x9c\xac\xe6\x97\xa5", 4), "...");
}

TEST(Text, TrimEndRemovesTrailingSpacesOnly) {
  EXPECT_EQ(TrimEnd(" a b  "), " a b");
  EXPECT_EQ(TrimEnd("   "), "");
}

}  // namespace
}  // namespace pciinfo
