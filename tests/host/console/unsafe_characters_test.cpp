// SPDX-License-Identifier: Apache-2.0
#include "host/console/unsafe_characters.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

TEST(UnsafeCharacters, AreControlsAndInvisibleOnes) {
  for (const Range range :
       {Range{0, 0x1F},     {0x7F, 0x9F},       {0xAD, 0xAD},       {0x34F, 0x34F},
        {0x61C, 0x61C},     {0x115F, 0x1160},   {0x180B, 0x180E},   {0x200B, 0x200F},
        {0x2028, 0x202E},   {0x2060, 0x2064},   {0x2066, 0x206F},   {0xFE00, 0xFE0F},
        {0xFEFF, 0xFEFF},   {0xFFF9, 0xFFFB},   {0xFFFE, 0xFFFF},   {0x1D173, 0x1D17A},
        {0xE0000, 0xE007F}, {0xE0100, 0xE01EF}, {0x1FFFE, 0x1FFFF}, {0x10FFFE, 0x10FFFF}}) {
    for (char32_t c = range.first; c <= range.last; ++c) {
      EXPECT_TRUE(IsUnsafe(c)) << static_cast<unsigned>(c);
    }
  }
}

TEST(UnsafeCharacters, AreNotThoseThatAreSeen) {
  for (const Range range : {Range{' ', '~'},
                            {0xA0, 0xAC},
                            {0xAE, 0x34E},
                            {0x350, 0x36F},
                            {0x400, 0x5FF},
                            {0x3041, 0x3096},
                            {0x4E00, 0x9FFF},
                            {0x2010, 0x2027},
                            {0x2070, 0x2BFF},
                            {0xAC00, 0xD7A3},
                            {0xFFFC, 0xFFFD},
                            {0x1F300, 0x1F64F},
                            {0x20000, 0x2A6DF}}) {
    for (char32_t c = range.first; c <= range.last; ++c) {
      EXPECT_FALSE(IsUnsafe(c)) << static_cast<unsigned>(c);
    }
  }
}

TEST(UnsafeCharacters, PrintableAsciiHasNone) {
  EXPECT_TRUE(IsPrintableAscii(" az~"));
  EXPECT_TRUE(IsPrintableAscii(""));
  for (const char c : {'\0', '\n', '\x1f', '\x7f', '\x80', '\xff'}) {
    EXPECT_FALSE(IsPrintableAscii(std::string_view(&c, 1))) << static_cast<int>(c);
  }
}

}  // namespace
}  // namespace pciinfo
