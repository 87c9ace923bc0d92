// SPDX-License-Identifier: Apache-2.0
#include "topology/error_counters.h"

#include <algorithm>
#include <charconv>

namespace topology {
namespace {

struct CounterLine {
  std::string_view name;
  std::uint64_t count = 0;
};

std::optional<CounterLine> ParseCounterLine(std::string_view line) {
  const std::size_t blank = line.rfind(' ');
  if (blank == std::string_view::npos || blank == 0) return std::nullopt;
  CounterLine counter{line.substr(0, blank)};
  const char* const end = line.data() + line.size();
  const auto [stop, error] = std::from_chars(line.data() + blank + 1, end, counter.count);
  if (error != std::errc() || stop != end) return std::nullopt;
  return counter;
}

}  // namespace

std::optional<ErrorCounters> ParseErrorCounters(std::string_view text) {
  ErrorCounters counters;
  std::optional<std::uint64_t> total;
  std::uint64_t sum = 0;
  bool any = false;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    const auto counter = ParseCounterLine(text.substr(at, end - at));
    at = end + 1;
    if (!counter) continue;
    any = true;
    if (counter->name.starts_with("TOTAL_")) {
      total = counter->count;
    } else if (counter->count != 0) {
      sum += counter->count;
      counters.nonZero.push_back(std::string(counter->name) + " " + std::to_string(counter->count));
    }
  }
  if (!any) return std::nullopt;
  counters.total = total.value_or(sum);
  return counters;
}

}  // namespace topology
