// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "host/console/output.h"
#include "host/report/parts.h"

namespace pciinfo {

/// Writes parts as a graph for Graphviz: a cluster for each bus and each slot, a node for each port
/// and card, and edges as wide as their links.
void WriteDot(Output& output, const std::vector<PartGroup>& groups);

}  // namespace pciinfo
