#pragma once

#include <vector>

#include "host/bus_tree.h"
#include "host/output.h"
#include "host/terminal.h"

namespace pciinfo {

/// Draws the buses, a function or a fold of many alike a line, slots in brackets.
void WriteTree(Output& output, const std::vector<RootBus>& tree, const Terminal& terminal);

/// Writes the same as JSON, which docs/formats.md describes.
void WriteTreeJson(Output& output, const std::vector<RootBus>& tree);

}  // namespace pciinfo
