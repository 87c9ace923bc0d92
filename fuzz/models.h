// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ios>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

// Simple and slow models of rules, with which several targets compare the code.

namespace fuzz {

/// Returns the non-empty parts of a text between any of the delimiters.
inline std::vector<std::string> PlainTokens(std::string_view text, std::string_view delimiters) {
  std::vector<std::string> tokens(1);
  for (const char c : text) {
    if (delimiters.find(c) == std::string_view::npos) {
      tokens.back() += c;
    } else if (!tokens.back().empty()) {
      tokens.emplace_back();
    }
  }
  if (tokens.back().empty()) tokens.pop_back();
  return tokens;
}

/// Returns the number that a stream with only the flag std::hex reads from a text.
template <class Number>
Number PlainHex(const std::string& text) {
  std::stringstream stream(text);
  stream.flags(std::ios_base::hex);
  Number value = 0;
  stream >> value;
  return value;
}

}  // namespace fuzz
