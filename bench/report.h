// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "bench/results.h"

namespace bench {

/// Returns the tables of docs/dev/performance.md: the time and memory of each program on each
/// machine, and how the targets are met, by the median of the ratios of the rounds and by the ratio
/// of the least measures. `circumstances` is a sentence on when and where it was measured.
std::string MakeTables(const Results& results, const std::string& circumstances);

/// Writes `text` to a file, between the line that begins with "<!-- bench/run" and the line "<!--
/// end -->". Throws std::runtime_error when the file has no such lines.
void ReplaceBetweenMarkers(const std::string& file, const std::string& text);

}  // namespace bench
