// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace bench {

/// Numbers that look random and are the same on every machine: SplitMix64. The distributions of the
/// standard library differ from one library to the next.
class Random final {
 public:
  /// Equal numbers give equal series.
  Random(std::initializer_list<std::uint64_t> seeds) {
    for (const std::uint64_t seed : seeds) state_ = Next() ^ seed;
  }

  std::uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t bits = state_;
    bits = (bits ^ bits >> 30U) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ bits >> 27U) * 0x94D049BB133111EBU;
    return bits ^ bits >> 31U;
  }

  /// A number from 0 to `end` - 1; `end` is not 0.
  std::size_t Below(std::size_t end) { return static_cast<std::size_t>(Next() % end); }

  /// The same, with small numbers more often than large ones: few kinds of anything are common.
  std::size_t FewBelow(std::size_t end) { return Below(Below(end) + 1); }

  bool IsOneIn(std::size_t count) { return Below(count) == 0; }

 private:
  std::uint64_t state_ = 0;
};

}  // namespace bench
