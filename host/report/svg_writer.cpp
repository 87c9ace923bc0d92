// SPDX-License-Identifier: Apache-2.0
#include "host/report/svg_writer.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

#include "host/report/assets.h"
#include "host/report/layout.h"

namespace pciinfo {
namespace {

constexpr double kPanelGap = 16;

const char* ClassOf(TextKind kind) {
  switch (kind) {
    case TextKind::kTitle:
      return "title";
    case TextKind::kNote:
      return "note";
    case TextKind::kName:
      return "name";
    case TextKind::kDevice:
      return "device";
    case TextKind::kSlot:
      return "slot";
    case TextKind::kRemark:
      return "remark";
    case TextKind::kState:
      return "state";
    case TextKind::kAddress:
      return "address";
    case TextKind::kNarrow:
      return "narrow-text";
    case TextKind::kLink:
      break;
  }
  return "link-text";
}

const char* ClassOf(ShapeKind kind) {
  switch (kind) {
    case ShapeKind::kCard:
      return "card-box";
    case ShapeKind::kDevice:
      return "device-box";
    case ShapeKind::kSwitch:
      return "switch-box";
    case ShapeKind::kGroup:
      return "group-box";
    case ShapeKind::kSlot:
      return "slot-box";
    case ShapeKind::kUnknownSlot:
      return "unknown-box";
    case ShapeKind::kEmptySlot:
      return "empty-box";
    case ShapeKind::kDoubtfulSlot:
      break;
  }
  return "doubtful-box";
}

const char* ClassOf(LineKind kind) {
  switch (kind) {
    case LineKind::kPossible:
      return "possible";
    case LineKind::kLink:
      return "link";
    case LineKind::kNarrow:
      return "narrow";
    case LineKind::kBus:
      break;
  }
  return "";
}

void WriteLine(Markup& markup, const PlacedLine& line) {
  markup.Empty("path", {{"class", ClassOf(line.kind)},
                        {"d", fmt::format("M{} {}L{} {}", Pixels(line.left), Pixels(line.top),
                                          Pixels(line.right), Pixels(line.bottom))},
                        {"stroke-width", Pixels(line.thickness)}});
}

void WriteShape(Markup& markup, const char* shapeClass, const Rectangle& box, double corner) {
  markup.Empty("rect", {{"class", shapeClass},
                        {"x", Pixels(box.left)},
                        {"y", Pixels(box.top)},
                        {"width", Pixels(box.width)},
                        {"height", Pixels(box.height)},
                        {"rx", Pixels(corner)}});
}

/// A text in a script of unknown width is made as wide as its box, so that it covers no other.
void WriteText(Markup& markup, const PlacedText& text) {
  const bool isGuessed = IsWidthGuessed(text.text);
  markup.Element("text",
                 {{"class", ClassOf(text.kind)},
                  {"x", Pixels(text.box.left)},
                  {"y", Pixels(text.box.top + FontOf(text.kind).size + 0.5)},
                  {"textLength", isGuessed ? Pixels(text.box.width) : ""},
                  {"lengthAdjust", isGuessed ? "spacingAndGlyphs" : ""}},
                 text.text);
}

std::string PlacesText(const std::vector<std::size_t>& places) {
  return fmt::format("{}", fmt::join(places, " "));
}

/// The row of a table that tells of an item.
std::string RowOf(const DrawnItem& item, const std::string& prefix) {
  if (!item.slots.empty()) return fmt::format("#{}s{}", prefix, item.slots.front());
  return item.functions.empty() ? "" : fmt::format("#{}f{}", prefix, item.functions.front());
}

void WriteItem(Markup& markup, const DrawnItem& item, const std::optional<std::string>& prefix) {
  if (prefix) {
    markup.Open("a", {{"class", "item"},
                      {"href", RowOf(item, *prefix)},
                      {"data-functions", PlacesText(item.functions)},
                      {"data-slots", PlacesText(item.slots)}});
  } else {
    markup.Open("g");
  }
  markup.Element("title", {}, item.title);
  for (const PlacedLine& line : item.lines) WriteLine(markup, line);
  for (const PlacedShape& shape : item.shapes) {
    WriteShape(markup, ClassOf(shape.kind), shape.box, 5);
  }
  for (const PlacedText& text : item.texts) WriteText(markup, text);
  markup.CloseLine();
}

struct Sizes {
  double width = 0;
  double height = 0;
};

/// The widths and the greatest height of columns.
Sizes SizesOf(const std::vector<Panel>& panels,
              const std::vector<std::vector<std::size_t>>& columns) {
  Sizes sizes{kPanelGap, 0};
  for (const auto& column : columns) {
    double width = 0;
    double height = kPanelGap;
    for (const std::size_t place : column) {
      width = std::max(width, panels[place].width);
      height += panels[place].height + kPanelGap;
    }
    sizes.width += width + kPanelGap;
    sizes.height = std::max(sizes.height, height);
  }
  return sizes;
}

/// Returns the columns whose sizes come nearest to those of a screen.
std::vector<std::vector<std::size_t>> BestColumns(const std::vector<Panel>& panels) {
  constexpr double kBestRatio = 1.4;
  constexpr std::size_t kMostColumns = 12;
  std::vector<std::vector<std::size_t>> best;
  double leastError = 0;
  for (std::size_t count = 1; count <= std::min(kMostColumns, panels.size()); ++count) {
    const auto columns = InColumns(panels, count, kPanelGap);
    const Sizes sizes = SizesOf(panels, columns);
    const double error = std::abs(std::log(sizes.width / sizes.height / kBestRatio));
    if (!best.empty() && error >= leastError) continue;
    best = columns;
    leastError = error;
  }
  return best;
}

void WriteColumns(Markup& markup, const std::vector<Panel>& panels,
                  const std::vector<std::vector<std::size_t>>& columns) {
  double left = kPanelGap;
  for (const auto& column : columns) {
    double top = kPanelGap;
    double width = 0;
    for (const std::size_t place : column) {
      WritePanel(markup, panels[place], std::nullopt, {{"x", Pixels(left)}, {"y", Pixels(top)}});
      top += panels[place].height + kPanelGap;
      width = std::max(width, panels[place].width);
    }
    left += width + kPanelGap;
  }
}

}  // namespace

void WritePanel(Markup& markup, const Panel& panel, const std::optional<std::string>& prefix,
                const Markup::Attributes& place) {
  Markup::Attributes attributes = place;
  const std::string width = Pixels(panel.width);
  const std::string height = Pixels(panel.height);
  attributes.insert(attributes.end(), {{"class", "panel"},
                                       {"width", width},
                                       {"height", height},
                                       {"viewBox", fmt::format("0 0 {} {}", width, height)},
                                       {"role", "group"},
                                       {"aria-label", panel.title}});
  markup.Open("svg", attributes);
  WriteShape(markup, "frame", {0.5, 0.5, panel.width - 1, panel.height - 1}, 8);
  for (const PlacedLine& line : panel.lines) WriteLine(markup, line);
  for (const PlacedText& text : panel.texts) WriteText(markup, text);
  markup.Fixed("\n");
  for (const DrawnItem& item : panel.items) WriteItem(markup, item, prefix);
  markup.CloseLine();
}

void WriteSvg(Output& output, const std::vector<Panel>& panels, const std::string& title) {
  const auto columns = BestColumns(panels);
  const Sizes sizes = SizesOf(panels, columns);
  const std::string width = Pixels(sizes.width);
  const std::string height = Pixels(sizes.height);
  Markup markup(output);
  markup.Open("svg", {{"xmlns", "http://www.w3.org/2000/svg"},
                      {"width", width},
                      {"height", height},
                      {"viewBox", fmt::format("0 0 {} {}", width, height)}});
  markup.Element("title", {}, title);
  markup.Open("style");
  markup.Fixed(kDrawingStyle.text);
  markup.CloseLine();
  markup.Empty("rect", {{"class", "page"}, {"width", width}, {"height", height}});
  WriteColumns(markup, panels, columns);
  markup.CloseLine();
}

}  // namespace pciinfo
