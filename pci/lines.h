#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "framework/cim_value.h"

/// The lines of `text` as string values, empty lines included, without their line ends. Text behind
/// the last line end is left out.
inline NQZMVTQ20::TCIMValue::TArray SplitLines(std::string_view text) {
  NQZMVTQ20::TCIMValue::TArray lines;
  // Listings run to millions of lines: a growing vector would hold them twice.
  lines.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')));
  std::size_t begin = 0;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos;
       end = text.find('\n', begin)) {
    lines.emplace_back(std::string(text.substr(begin, end - begin)));
    begin = end + 1;
  }
  return lines;
}
