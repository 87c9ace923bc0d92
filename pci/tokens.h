// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

/// Calls `take` for the non-empty parts of `text` between delimiters, in order, until it returns
/// false. `delimiters` is a character, or a text of which any character is a delimiter. Repeated,
/// leading and trailing delimiters give no empty parts.
template <class Delimiters, class Take>
void ForEachToken(std::string_view text, Delimiters delimiters, Take take) {
  for (std::size_t begin = text.find_first_not_of(delimiters); begin != std::string_view::npos;) {
    const std::size_t end = text.find_first_of(delimiters, begin);
    if (!take(text.substr(begin, end - begin)) || end == std::string_view::npos) return;
    begin = text.find_first_not_of(delimiters, end);
  }
}
