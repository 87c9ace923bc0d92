// SPDX-License-Identifier: Apache-2.0
#include "host/process/time_budget.h"

#include <algorithm>

namespace pciinfo {

TimeBudget::Milliseconds TimeBudget::TimeOf(int step, bool isLast, Clock::time_point now) const {
  constexpr Milliseconds kMore{5000};
  const auto left = std::max(std::chrono::ceil<Milliseconds>(end_ - now), Milliseconds{0});
  const Milliseconds share = isLast ? left : left / 2;
  const auto before = taken_.find(step);
  return before == taken_.end() ? share : std::max(share, 2 * before->second + kMore);
}

}  // namespace pciinfo
