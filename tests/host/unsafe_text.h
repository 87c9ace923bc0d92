// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "host/console/unsafe_characters.h"
#include "host/console/utf8.h"

/// Every unsafe character that UTF-8 can hold, each followed by a letter; "\0" only on request,
/// because file names and arguments end there.
inline std::string EveryUnsafeCharacter(bool withZero = true) {
  static const std::string kAll = [] {
    std::string text;
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
      if (!pciinfo::IsUnsafe(c)) continue;
      pciinfo::AppendUtf8(text, c);
      text += 'a';
    }
    return text;
  }();
  return kAll.substr(withZero ? 0 : 2);
}

/// Returns the first unsafe character of a text, except those in `allowed`, or what is not UTF-8,
/// as a number; -1 if there is none.
inline long FirstUnsafe(std::string_view text, std::string_view allowed = "\n") {
  for (std::size_t position = 0; position < text.size();) {
    const char32_t c = pciinfo::NextCodePoint(text, position);
    const bool isAllowed = c < 0x80 && allowed.find(static_cast<char>(c)) != std::string::npos;
    if (c == pciinfo::kNoCodePoint || (pciinfo::IsUnsafe(c) && !isAllowed)) return c;
  }
  return -1;
}
