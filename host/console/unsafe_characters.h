// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace pciinfo {

/// Whether a character does something to a terminal or its reader other than being seen: control
/// characters, line and paragraph ends, direction controls, invisible format characters, variation
/// selectors and tags, and the code points that never are characters. A program that prints a text
/// from elsewhere must escape or replace them. Line feed and tab are among them.
bool IsUnsafe(char32_t codePoint) noexcept;

/// Whether `bytes`, which need not be UTF-8, are printable ASCII: nearly all texts are, and need no
/// decoding.
bool IsPrintableAscii(std::string_view bytes) noexcept;

}  // namespace pciinfo
