// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "framework/cim_value.h"

/// Returns the number of line ends in `text`.
inline std::size_t CountLines(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos;
       end = text.find('\n', end + 1)) {
    ++count;
  }
  return count;
}

/// Returns the lines of `text` as string values, including empty lines, without line ends. Drops
/// text after the last line end.
inline NQZMVTQ20::TCIMValue::TArray SplitLines(std::string_view text) {
  NQZMVTQ20::TCIMValue::TArray lines;
  // Listings may have millions of lines; a vector that grows would need twice the memory.
  lines.reserve(CountLines(text));
  std::size_t begin = 0;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos;
       end = text.find('\n', begin)) {
    lines.emplace_back(std::string(text.substr(begin, end - begin)));
    begin = end + 1;
  }
  return lines;
}
