#pragma once

#include <ios>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

// Plain forms of rules that several targets compare the code with: as short as the rule's own
// words, and as slow as it comes.

namespace fuzz {

/// The non-empty pieces of a text between any of the delimiters.
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

/// What a stream without any flag but the hexadecimal base extracts from a text.
template <class Number>
Number PlainHex(const std::string& text) {
  std::stringstream stream(text);
  stream.flags(std::ios_base::hex);
  Number value = 0;
  stream >> value;
  return value;
}

}  // namespace fuzz
