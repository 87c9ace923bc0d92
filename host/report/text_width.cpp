// SPDX-License-Identifier: Apache-2.0
#include "host/report/text_width.h"

#include <algorithm>
#include <array>

#include "host/console/text.h"
#include "host/console/utf8.h"

namespace pciinfo {
namespace {

constexpr std::string_view kEllipsisSign = "\u2026";
constexpr double kMonoWidth = 0.61;
constexpr double kBoldFactor = 1.14;
constexpr double kWideCharacter = 1.1;

/// The widths of the characters from the blank to "~", in 2048ths of the font's size.
constexpr std::array<int, 95> kWidths = {
    651,  821,  942,  1716, 1303, 1946, 1597, 563,  799,  799,  1024, 1716, 651,  739,  651,  690,
    1303, 1303, 1303, 1303, 1303, 1303, 1303, 1303, 1303, 1303, 690,  690,  1716, 1716, 1716, 1087,
    2048, 1401, 1405, 1430, 1577, 1294, 1178, 1587, 1540, 604,  604,  1343, 1141, 1767, 1532, 1612,
    1235, 1612, 1423, 1300, 1251, 1499, 1401, 2025, 1403, 1251, 1403, 799,  690,  799,  1716, 1024,
    1024, 1255, 1300, 1126, 1300, 1260, 721,  1300, 1298, 569,  569,  1186, 569,  1995, 1298, 1253,
    1300, 1300, 842,  1067, 803,  1298, 1212, 1675, 1212, 1212, 1075, 1303, 690,  1303, 1716};

bool IsLatin(char32_t codePoint) {
  constexpr char32_t kLastLatin = 0x24F;
  return codePoint <= kLastLatin || codePoint == U'\u2026';
}

double CharacterWidth(char32_t codePoint, Face face) {
  if (codePoint < U' ' || codePoint > U'~') return kWideCharacter;
  if (face == Face::kMono) return kMonoWidth;
  return kWidths[codePoint - U' '] / 2048.0;
}

/// Where the characters of a text begin, and its end.
std::vector<std::size_t> CharacterStarts(std::string_view utf8) {
  std::vector<std::size_t> starts;
  starts.reserve(utf8.size() + 1);
  for (std::size_t position = 0; position < utf8.size();) {
    starts.push_back(position);
    const std::size_t start = position;
    NextCodePoint(utf8, position);
    if (position == start) ++position;
  }
  starts.push_back(utf8.size());
  return starts;
}

/// Returns the number of the first `count` characters that fit.
std::size_t CountFitting(std::string_view utf8, double width, const Font& font) {
  const std::vector<std::size_t> starts = CharacterStarts(utf8);
  std::size_t count = 0;
  while (count + 1 < starts.size() && TextWidth(utf8.substr(0, starts[count + 1]), font) <= width) {
    ++count;
  }
  return count;
}

std::string WithGap(std::string_view utf8, std::size_t kept) {
  const std::vector<std::size_t> starts = CharacterStarts(utf8);
  const std::size_t count = starts.size() - 1;
  const std::size_t atEnd = kept / 2;
  const std::string_view end = utf8.substr(starts[count - atEnd]);
  return TrimEnd(utf8.substr(0, starts[kept - atEnd])).append(kEllipsisSign).append(end);
}

/// Returns the end of the first line of a text: a blank, or the end of the text.
std::size_t LineEnd(std::string_view utf8, double width, const Font& font) {
  std::size_t end = 0;
  for (std::size_t next = 0; next < utf8.size();) {
    next = std::min(utf8.find(' ', next + 1), utf8.size());
    if (TextWidth(utf8.substr(0, next), font) > width) break;
    end = next;
  }
  return end;
}

}  // namespace

double TextWidth(std::string_view utf8, const Font& font) {
  double width = 0;
  for (std::size_t position = 0; position < utf8.size();) {
    const std::size_t start = position;
    width += CharacterWidth(NextCodePoint(utf8, position), font.face);
    if (position == start) ++position;
  }
  return width * font.size * (font.face == Face::kBold ? kBoldFactor : 1);
}

bool IsWidthGuessed(std::string_view utf8) {
  for (std::size_t position = 0; position < utf8.size();) {
    const std::size_t start = position;
    if (!IsLatin(NextCodePoint(utf8, position))) return true;
    if (position == start) ++position;
  }
  return false;
}

std::string ShortenedTo(std::string_view utf8, double width, const Font& font) {
  // No text that is drawn has room for more characters; the rest would only take time.
  constexpr std::size_t kMostKept = 400;
  if (utf8.size() <= kMostKept && TextWidth(utf8, font) <= width) return std::string(utf8);
  std::size_t kept = std::min(CountFitting(utf8.substr(0, kMostKept), width, font),
                              CharacterStarts(utf8).size() - 1);
  std::string text = WithGap(utf8, kept);
  while (kept > 0 && TextWidth(text, font) > width) text = WithGap(utf8, --kept);
  return text;
}

std::vector<std::string> BrokenInto(std::size_t most, std::string_view utf8, double width,
                                    const Font& font) {
  std::vector<std::string> lines;
  while (lines.size() + 1 < most && TextWidth(utf8, font) > width) {
    const std::size_t end = LineEnd(utf8, width, font);
    if (end == 0 || end == utf8.size()) break;
    lines.emplace_back(utf8.substr(0, end));
    utf8.remove_prefix(end + 1);
  }
  lines.push_back(ShortenedTo(utf8, width, font));
  return lines;
}

}  // namespace pciinfo
