// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "bench/results.h"

namespace bench {

/// Returns an SVG plot of the wall time (least of the rounds) against the number of functions, one
/// line per program, with logarithmic axes.
std::string MakePlot(const Results& results);

}  // namespace bench
