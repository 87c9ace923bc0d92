#pragma once

#include <string>

#include "bench/results.h"

namespace bench {

/// An SVG picture of wall time (least of the rounds) against the number of functions, a line a
/// program, both axes logarithmic.
std::string MakePlot(const Results& results);

}  // namespace bench
