// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace bench {

/// The measures of one machine: by name, a number for each round. Times are in seconds, memory in
/// bytes; ratios are computed within a round.
using Measures = std::map<std::string, std::vector<double>>;

/// The measures of all machines, by the number of functions.
using Results = std::map<unsigned, Measures>;

inline double Least(const std::vector<double>& values) {
  return *std::min_element(values.begin(), values.end());
}

inline double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t half = values.size() / 2;
  return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

}  // namespace bench
