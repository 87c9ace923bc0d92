#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "framework/cim_value.h"

/// How many line ends there are in `text`.
inline std::size_t CountLines(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos;
       end = text.find('\n', end + 1)) {
    ++count;
  }
  return count;
}

/// The lines of `text` as string values, empty lines included, without their line ends. Text behind
/// the last line end is left out.
inline NQZMVTQ20::TCIMValue::TArray SplitLines(std::string_view text) {
  NQZMVTQ20::TCIMValue::TArray lines;
  // Listings run to millions of lines: a growing vector would hold them twice.
  lines.reserve(CountLines(text));
  std::size_t begin = 0;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos;
       end = text.find('\n', begin)) {
    lines.emplace_back(std::string(text.substr(begin, end - begin)));
    begin = end + 1;
  }
  return lines;
}
