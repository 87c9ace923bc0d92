// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <map>

namespace pciinfo {

/// Shares the time of a run among its steps, which are numbered from 1.
class TimeBudget final {
 public:
  using Clock = std::chrono::steady_clock;
  using Milliseconds = std::chrono::milliseconds;

  /// `total` is the time of all steps together, from `start` on.
  explicit TimeBudget(Milliseconds total, Clock::time_point start = Clock::now())
      : total_(total), end_(start + total) {}

  Milliseconds GetTotal() const noexcept { return total_; }

  /// How long a step may take that begins at `now`: half of the time that is left, so that a step
  /// that hangs leaves some to those after it; all of it for the last one. A step that was done
  /// once already, by a worker that failed later, gets at least twice what it took then and five
  /// seconds more: it did not hang, although the step that did has used up the time.
  Milliseconds TimeOf(int step, bool isLast, Clock::time_point now) const;

  /// A step was done in that time.
  void NoteDone(int step, Milliseconds taken) { taken_[step] = taken; }

 private:
  Milliseconds total_;
  Clock::time_point end_;
  std::map<int, Milliseconds> taken_;
};

}  // namespace pciinfo
