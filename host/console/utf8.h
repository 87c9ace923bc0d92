// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pciinfo {

/// NextCodePoint returns this for bytes that are not UTF-8; no code point has this number.
inline constexpr char32_t kNoCodePoint = 0xFFFFFFFF;

/// Returns the code point that begins at `position` (less than the size of `text`) and moves
/// `position` to the byte after it. Returns kNoCodePoint and leaves `position` unchanged if no
/// valid UTF-8 sequence begins there (overlong forms, surrogates and numbers above U+10FFFF are not
/// valid).
char32_t NextCodePoint(std::string_view text, std::size_t& position) noexcept;

/// Appends the UTF-8 form of a code point.
void AppendUtf8(std::string& text, char32_t codePoint);

/// Appends a code point as escapes: for each of its one or two UTF-16 units `mark` and four
/// hexadecimal digits.
void AppendUtf16Escapes(std::string& text, std::string_view mark, char32_t codePoint);

/// Returns `bytes` as UTF-8: unchanged if all of them are valid UTF-8, else each byte read as a
/// Latin-1 character. Firmware strings use either encoding and do not say which.
std::string ToUtf8(std::string_view bytes);

}  // namespace pciinfo
