// SPDX-License-Identifier: Apache-2.0
#include "host/cli/suggestion.h"

#include <algorithm>
#include <numeric>

namespace pciinfo {
namespace {

/// The number of letters to insert, leave out or replace in one word to make it the other.
std::size_t Distance(const std::string& left, const std::string& right) {
  std::vector<std::size_t> row(right.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < left.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < right.size(); ++j) {
      const std::size_t replaced = diagonal + (left[i] == right[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string NearestOf(const std::string& word, const std::vector<std::string>& names) {
  constexpr std::size_t kLongest = 32;  // longer words are no commands
  constexpr std::size_t kMost = 2;
  std::string nearest;
  std::size_t least = kMost + 1;
  if (word.empty() || word.size() > kLongest) return nearest;
  for (const std::string& name : names) {
    const std::size_t distance = name.starts_with(word) ? 0 : Distance(word, name);
    if (distance >= std::min(least, word.size())) continue;
    least = distance;
    nearest = name;
  }
  return nearest;
}

}  // namespace pciinfo
