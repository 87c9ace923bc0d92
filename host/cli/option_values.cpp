// SPDX-License-Identifier: Apache-2.0
#include "host/cli/option_values.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "host/check/machine_checks.h"
#include "host/cli/suggestion.h"

namespace pciinfo {

std::string IsNoLimitOrEnough(const std::string& text) {
  // With less, the program's own libraries cannot be loaded; no address space is larger.
  constexpr long kLeast = 128;
  constexpr long kMost = 1L << 30;
  char* end = nullptr;
  const long limit = std::strtol(text.c_str(), &end, 10);
  const bool isNumber = end != text.c_str() && *end == '\0';
  return isNumber && (limit == 0 || (limit >= kLeast && limit <= kMost))
             ? ""
             : "must be 0 or at least 128 (MiB)";
}

std::string IsTime(const std::string& text) {
  char* end = nullptr;
  const double seconds = std::strtod(text.c_str(), &end);
  const bool isNumber = end != text.c_str() && *end == '\0';
  // False for a value that is not a number ("nan").
  return isNumber && seconds >= 0.1 && seconds <= 1e6 ? "" : "must be 0.1 to 1000000 (seconds)";
}

std::string IsFindingCode(const std::string& text) {
  const std::vector<std::string> codes = FindingCodes();
  if (std::find(codes.begin(), codes.end(), text) != codes.end()) return "";
  const std::string nearest = NearestOf(text, codes);
  return fmt::format("there is no finding \"{}\"{}", text,
                     nearest.empty() ? "" : fmt::format(": did you mean \"{}\"?", nearest));
}

}  // namespace pciinfo
