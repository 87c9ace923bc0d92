// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "host/report/layout.h"

namespace pciinfo {
namespace {

using PanelColumns = std::vector<std::vector<std::size_t>>;

/// Fills each column before the next one is begun.
PanelColumns Filled(const std::vector<Panel>& panels, double mostHeight, double gap) {
  PanelColumns columns;
  double height = 0;
  for (std::size_t i = 0; i < panels.size(); ++i) {
    const bool fits = height + panels[i].height <= mostHeight;
    if (columns.empty() || !fits) {
      columns.emplace_back();
      height = 0;
    }
    columns.back().push_back(i);
    height += panels[i].height + gap;
  }
  return columns;
}

}  // namespace

PanelColumns InColumns(const std::vector<Panel>& panels, std::size_t columns, double gap) {
  double least = 0;
  double most = 0;
  for (const Panel& panel : panels) {
    least = std::max(least, panel.height);
    most += panel.height + gap;
  }
  constexpr double kExact = 1;
  while (most - least > kExact) {
    const double middle = (least + most) / 2;
    (Filled(panels, middle, gap).size() <= columns ? most : least) = middle;
  }
  return Filled(panels, most, gap);
}

}  // namespace pciinfo
