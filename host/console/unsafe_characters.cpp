// SPDX-License-Identifier: Apache-2.0
#include "host/console/unsafe_characters.h"

#include <algorithm>
#include <iterator>

namespace pciinfo {
namespace {

struct CodePoints {
  char32_t first;
  char32_t last;
};

// In order. The general categories Cc, Cf, Zl and Zp of Unicode, what its property
// Default_Ignorable_Code_Point adds to them, and the noncharacters of the first plane.
constexpr CodePoints kUnsafe[] = {
    {0x0000, 0x001F},    // C0 controls
    {0x007F, 0x009F},    // DEL and the C1 controls
    {0x00AD, 0x00AD},    // soft hyphen
    {0x034F, 0x034F},    // grapheme joiner
    {0x0600, 0x0605},    // Arabic number signs
    {0x061C, 0x061C},    // Arabic letter mark, a direction mark
    {0x06DD, 0x06DD},    // end of ayah
    {0x070F, 0x070F},    // Syriac abbreviation mark
    {0x0890, 0x0891},    // Arabic currency marks
    {0x08E2, 0x08E2},    // disputed end of ayah
    {0x115F, 0x1160},    // Hangul fillers
    {0x17B4, 0x17B5},    // Khmer inherent vowels
    {0x180B, 0x180F},    // Mongolian variation selectors
    {0x200B, 0x200F},    // zero-width space and joiners, direction marks
    {0x2028, 0x202E},    // line and paragraph ends, direction embeddings and overrides
    {0x2060, 0x206F},    // word joiner, invisible operators, direction isolates
    {0x3164, 0x3164},    // Hangul filler
    {0xFDD0, 0xFDEF},    // noncharacters
    {0xFE00, 0xFE0F},    // variation selectors
    {0xFEFF, 0xFEFF},    // byte order mark
    {0xFFA0, 0xFFA0},    // half-width Hangul filler
    {0xFFF0, 0xFFFB},    // annotations
    {0x110BD, 0x110BD},  // Kaithi number sign
    {0x110CD, 0x110CD},  // Kaithi number sign above
    {0x13430, 0x1343F},  // Egyptian hieroglyph joiners
    {0x1BCA0, 0x1BCA3},  // shorthand format controls
    {0x1D173, 0x1D17A},  // musical format controls
    {0xE0000, 0xE0FFF},  // tags and more variation selectors
};

bool IsLastOfPlane(char32_t codePoint) { return (codePoint & 0xFFFE) == 0xFFFE; }

}  // namespace

bool IsUnsafe(char32_t codePoint) noexcept {
  const auto* const range = std::lower_bound(
      std::begin(kUnsafe), std::end(kUnsafe), codePoint,
      [](const CodePoints& candidate, char32_t wanted) { return candidate.last < wanted; });
  return (range != std::end(kUnsafe) && range->first <= codePoint) || IsLastOfPlane(codePoint);
}

bool IsPrintableAscii(std::string_view bytes) noexcept {
  return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

}  // namespace pciinfo
