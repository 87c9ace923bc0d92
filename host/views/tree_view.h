#pragma once

#include <vector>

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/model/bus_tree.h"

namespace pciinfo {

/// Draws the buses, a function or a fold of many alike a line, slots in brackets.
void WriteTree(Output& output, const std::vector<RootBus>& tree, const Terminal& terminal);

/// Writes the same as JSON, which docs/formats.md describes.
void WriteTreeJson(Output& output, const std::vector<RootBus>& tree);

}  // namespace pciinfo
