// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <ios>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

// Simple and slow models of rules, with which several targets compare the code.

namespace fuzz {

/// Returns the non-empty parts of a text between any of the delimiters.
inline std::vector<std::string> PlainTokens(std::string_view text, std::string_view delimiters) {
  std::vector<std::string> tokens;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find_first_of(delimiters, start), text.size());
    if (end > start) tokens.emplace_back(text.substr(start, end - start));
    start = end + 1;
  }
  return tokens;
}

/// Returns the number that a stream with only the flag std::hex reads from a text.
template <class Number>
Number PlainHex(const std::string& text) {
  static std::istringstream stream;  // making one takes longer than reading a number
  stream.clear();
  stream.flags(std::ios_base::hex);
  stream.str(text);
  Number value = 0;
  stream >> value;
  return value;
}

}  // namespace fuzz
