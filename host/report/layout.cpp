// SPDX-License-Identifier: Apache-2.0
#include "host/report/layout.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "host/report/panel_maker.h"

namespace pciinfo {
namespace {

/// A bus whose parts are higher than this goes on in another panel.
constexpr double kFullHeight = 480;

/// A bus with the parts from one place to another.
PartGroup Piece(const PartGroup& group, std::size_t start, std::size_t end) {
  const auto first = group.parts.begin();
  PartGroup piece{group.title, group.note, {}};
  piece.parts.assign(first + static_cast<std::ptrdiff_t>(start),
                     first + static_cast<std::ptrdiff_t>(end));
  if (start != 0) piece.title += ", continued";
  return piece;
}

/// Returns where the parts of a bus are divided, so that the panels are about equally high.
std::vector<std::size_t> Divisions(const std::vector<double>& heights) {
  const double all = std::accumulate(heights.begin(), heights.end(), 0.0);
  const double each = all / std::max(1.0, std::round(all / kFullHeight));
  std::vector<std::size_t> divisions = {0};
  double height = 0;
  double full = each;
  for (std::size_t i = 0; i < heights.size(); ++i) {
    if (i != divisions.back() && height + heights[i] / 2 > full) {
      divisions.push_back(i);
      full += each;
    }
    height += heights[i];
  }
  divisions.push_back(heights.size());
  return divisions;
}

}  // namespace

std::vector<Panel> LayOut(const std::vector<PartGroup>& groups) {
  double width = 0;  // of the widest; with one width for all they align
  for (const PartGroup& group : groups) width = std::max(width, PanelWidth(group.parts));
  std::vector<Panel> panels;
  for (const PartGroup& group : groups) {
    if (group.parts.empty()) continue;
    std::vector<double> heights;
    heights.reserve(group.parts.size());
    for (const Part& part : group.parts) heights.push_back(PartHeight(part, width));
    const std::vector<std::size_t> divisions = Divisions(heights);
    for (std::size_t i = 0; i + 1 < divisions.size(); ++i) {
      panels.push_back(MakePanel(Piece(group, divisions[i], divisions[i + 1]), width));
    }
  }
  return panels;
}

}  // namespace pciinfo
