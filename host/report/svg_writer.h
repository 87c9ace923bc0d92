// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/report/drawing.h"
#include "host/report/markup.h"

namespace pciinfo {

/// The attributes of the element that an item becomes.
enum class ItemUse {
  kPicture,  ///< a group: the drawing stands alone
  kLink      ///< a link to the rows of tables "f3" (functions) and "s0" (slots)
};

/// Writes one panel as an element `svg`; `place` are attributes that say where it is.
void WritePanel(Markup& markup, const Panel& panel, ItemUse use, const Markup::Attributes& place);

/// Writes panels as an SVG document of its own, in columns that make it somewhat wider than high.
void WriteSvg(Output& output, const std::vector<Panel>& panels, const std::string& title);

}  // namespace pciinfo
