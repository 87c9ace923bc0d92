// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

#include "bench/board_builder.h"

namespace bench {

/// The fewest and the most functions that PlanBoard can make.
inline constexpr std::size_t kFewestOfBoard = 64;
inline constexpr std::size_t kMostOfBoard = 20000;

/// Returns the plan of a machine with exactly `functions` PCI functions, always the same one, that
/// has slots of every kind in several domains and below several host bridges, and firmware that
/// describes them in every way that real firmware does. Throws std::invalid_argument for a number
/// that is not possible.
BoardPlan PlanBoard(std::size_t functions);

}  // namespace bench
