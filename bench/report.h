#pragma once

#include <string>

#include "bench/results.h"

namespace bench {

/// The tables of docs/dev/performance.md: what each program takes on each machine, and how the
/// targets are met: by the median of the rounds' ratios; the ratio of the least measures stands
/// beside it.
/// `circumstances` is a sentence on when and where it was measured.
std::string MakeTables(const Results& results, const std::string& circumstances);

/// Puts `text` into a file, between the line that begins with "<!-- bench/run" and the line
/// "<!-- end -->". Throws std::runtime_error when the file has no such lines.
void ReplaceBetweenMarkers(const std::string& file, const std::string& text);

}  // namespace bench
