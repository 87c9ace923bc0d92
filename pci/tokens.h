#pragma once

#include <string_view>

/// Hands the non-empty pieces of `text` between delimiters, a character or any of a text's, to
/// `take`, in order, until it answers false. Runs of delimiters, leading and trailing ones give no
/// empty pieces.
template <class Delimiters, class Take>
void ForEachToken(std::string_view text, Delimiters delimiters, Take take) {
  for (std::size_t begin = text.find_first_not_of(delimiters); begin != std::string_view::npos;) {
    const std::size_t end = text.find_first_of(delimiters, begin);
    if (!take(text.substr(begin, end - begin)) || end == std::string_view::npos) return;
    begin = text.find_first_not_of(delimiters, end);
  }
}
