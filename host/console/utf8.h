#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pciinfo {

/// What NextCodePoint answers for bytes that are not UTF-8; no code point has this number.
inline constexpr char32_t kNoCodePoint = 0xFFFFFFFF;

/// The code point that begins at `position` (below the size of `text`), which is moved behind it;
/// kNoCodePoint, with the position unmoved, where no valid UTF-8 sequence begins (overlong forms,
/// surrogates and numbers above U+10FFFF are not valid).
char32_t NextCodePoint(std::string_view text, std::size_t& position) noexcept;

/// Appends the UTF-8 form of a code point.
void AppendUtf8(std::string& text, char32_t codePoint);

/// The text of `bytes` in UTF-8: the bytes themselves where all of them are valid UTF-8, else every
/// byte taken as one Latin-1 character. Firmware strings come in either form and do not say which.
std::string ToUtf8(std::string_view bytes);

}  // namespace pciinfo
