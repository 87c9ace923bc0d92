// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "host/report/drawing.h"
#include "host/report/parts.h"

namespace pciinfo {

/// Returns the width that a panel with these parts needs.
double PanelWidth(const std::vector<Part>& parts);

/// Returns the height of a part, and of what is behind it, in a panel of that width.
double PartHeight(const Part& part, double panelWidth);

/// Makes the panel of a bus.
Panel MakePanel(const PartGroup& group, double width);

}  // namespace pciinfo
