// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace topology {

/// How often errors of one severity have occurred since the function appeared, as the kernel counts
/// them in aer_dev_correctable, aer_dev_nonfatal or aer_dev_fatal.
struct ErrorCounters {
  std::uint64_t total = 0;
  std::vector<std::string> nonZero;  ///< "BadTLP 3", in the kernel's order
};

/// Reads the lines "NAME COUNT" of such a file; a line whose name begins with "TOTAL_" is the
/// total, without which it is the sum of the others. Nothing if there is no line of that form.
std::optional<ErrorCounters> ParseErrorCounters(std::string_view text);

}  // namespace topology
