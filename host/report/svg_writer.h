// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/report/drawing.h"
#include "host/report/markup.h"

namespace pciinfo {

/// Writes one panel as an element `svg`; `place` are attributes that say where it is. With a
/// `prefix`, items are links to rows of tables, "PREFIXf3" (functions) or "PREFIXs0" (slots).
void WritePanel(Markup& markup, const Panel& panel, const std::optional<std::string>& prefix,
                const Markup::Attributes& place);

/// Writes panels as an SVG document of its own, in columns that make it somewhat wider than high.
void WriteSvg(Output& output, const std::vector<Panel>& panels, const std::string& title);

}  // namespace pciinfo
