// SPDX-License-Identifier: Apache-2.0
#include "host/console/utf8.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

TEST(Utf8, ValidTextStaysAsItIs) {
  const std::string text = "gr\xc3\xbc\xc3\x9f \xe2\x82\xac \xf0\x9f\x98\x80";
  EXPECT_EQ(ToUtf8(text), text);
}

TEST(Utf8, InvalidTextIsReadAsLatin1) {
  EXPECT_EQ(ToUtf8("caf\xe9"), "caf\xc3\xa9");
  EXPECT_EQ(ToUtf8("\xff\x80"), "\xc3\xbf\xc2\x80");
}

TEST(Utf8, OneInvalidByteMakesAllBytesLatin1) {
  EXPECT_EQ(ToUtf8("\xc3\xa9\xe9"), "\xc3\x83\xc2\xa9\xc3\xa9");
}

class InvalidSequence : public testing::TestWithParam<std::string> {};

TEST_P(InvalidSequence, IsNoCodePoint) {
  std::size_t position = 0;
  EXPECT_EQ(NextCodePoint(GetParam(), position), kNoCodePoint);
  EXPECT_EQ(position, 0U);
}

INSTANTIATE_TEST_SUITE_P(Utf8, InvalidSequence,
                         testing::Values("\x80", "\xc3", "\xc3(", "\xc0\x80", "\xe0\x80\x80",
                                         "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xf0\x9f\x98",
                                         "\xf8\x88\x80\x80\x80"));

TEST(Utf8, BoundariesOfEveryLengthSurviveTheRoundTrip) {
  for (const char32_t codePoint : {U'\0', U'\x7f', U'\x80', U'\u07ff', U'\u0800', U'\ud7ff',
                                   U'\ue000', U'\uffff', U'\U00010000', U'\U0010ffff'}) {
    std::string text;
    AppendUtf8(text, codePoint);
    std::size_t position = 0;
    EXPECT_EQ(NextCodePoint(text, position), codePoint);
    EXPECT_EQ(position, text.size());
  }
}

}  // namespace
}  // namespace pciinfo
