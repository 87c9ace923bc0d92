// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <vector>

#include "host/report/drawing.h"
#include "host/report/parts.h"

namespace pciinfo {

/// Lays out parts in panels: each bus in one panel, or in several that continue each other where
/// it would be much higher than wide.
std::vector<Panel> LayOut(const std::vector<PartGroup>& groups);

/// Distributes panels, in their order, over columns whose heights differ little. Returns the
/// places of the panels of each column; no column is empty, and there are at most `columns`.
std::vector<std::vector<std::size_t>> InColumns(const std::vector<Panel>& panels,
                                                std::size_t columns, double gap);

}  // namespace pciinfo
