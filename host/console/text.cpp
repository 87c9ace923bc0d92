// SPDX-License-Identifier: Apache-2.0
#include "host/console/text.h"

#include <algorithm>
#include <iterator>

#include "host/console/unsafe_characters.h"
#include "host/console/utf8.h"

namespace pciinfo {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

constexpr Range kCombining[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A},
    {0x064B, 0x065F}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF},
    {0x302A, 0x302D}, {0x3099, 0x309A}, {0xFE20, 0xFE2F},
};

constexpr Range kWide[] = {
    {0x1100, 0x115F}, {0x2E80, 0x3029}, {0x302E, 0x303E},   {0x3041, 0x3098},   {0x309B, 0x4DBF},
    {0x4E00, 0xA4CF}, {0xA960, 0xA97F}, {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},
    {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};

template <std::size_t size>
bool IsIn(const Range (&ranges)[size], char32_t codePoint) {
  return std::any_of(std::begin(ranges), std::end(ranges), [codePoint](const Range& range) {
    return codePoint >= range.first && codePoint <= range.last;
  });
}

std::size_t WidthOf(char32_t codePoint) {
  if (IsIn(kCombining, codePoint)) return 0;
  return IsIn(kWide, codePoint) ? 2 : 1;
}

char32_t ShownAs(char32_t codePoint) {
  if (codePoint == U'\t') return U' ';
  return IsUnsafe(codePoint) ? U'?' : codePoint;
}

/// The longest prefix of `utf8` that fits into `width` columns.
std::string_view Beginning(std::string_view utf8, std::size_t width) {
  std::size_t used = 0;
  std::size_t end = 0;
  while (end < utf8.size()) {
    std::size_t next = end;
    const std::size_t columns = WidthOf(NextCodePoint(utf8, next));
    if (next == end || used + columns > width) break;
    used += columns;
    end = next;
  }
  return utf8.substr(0, end);
}

}  // namespace

std::string Printable(std::string_view bytes) {
  if (IsPrintableAscii(bytes)) return std::string(bytes);
  const std::string utf8 = ToUtf8(bytes);
  std::string shown;
  shown.reserve(utf8.size());
  for (std::size_t position = 0; position < utf8.size();) {
    AppendUtf8(shown, ShownAs(NextCodePoint(utf8, position)));
  }
  return shown;
}

std::size_t DisplayWidth(std::string_view utf8) {
  if (IsPrintableAscii(utf8)) return utf8.size();
  std::size_t width = 0;
  for (std::size_t position = 0; position < utf8.size();) {
    const std::size_t start = position;
    width += WidthOf(NextCodePoint(utf8, position));
    if (position == start) ++position;
  }
  return width;
}

std::string PadRight(std::string utf8, std::size_t width) {
  const std::size_t used = DisplayWidth(utf8);
  if (used < width) utf8.append(width - used, ' ');
  return utf8;
}

std::string Cut(std::string_view utf8, std::size_t width) {
  constexpr std::string_view kEllipsis = "...";
  if (DisplayWidth(utf8) <= width) return std::string(utf8);
  if (width <= kEllipsis.size()) return std::string(kEllipsis.substr(0, width));
  return std::string(Beginning(utf8, width - kEllipsis.size())).append(kEllipsis);
}

std::string CutMiddle(std::string_view utf8, std::size_t width) {
  constexpr std::string_view kEllipsis = "...";
  constexpr std::size_t kLeastHalf = 4;
  if (DisplayWidth(utf8) <= width) return std::string(utf8);
  if (width < kEllipsis.size() + 2 * kLeastHalf) return Cut(utf8, width);
  const std::size_t room = width - kEllipsis.size();
  std::string_view end = utf8;
  while (DisplayWidth(end) > room / 2) {
    std::size_t next = 0;
    NextCodePoint(end, next);
    end.remove_prefix(std::max<std::size_t>(next, 1));
  }
  return std::string(Beginning(utf8, room - room / 2)).append(kEllipsis).append(end);
}

std::string TrimEnd(std::string_view text) {
  return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
}

}  // namespace pciinfo
