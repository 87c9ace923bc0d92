// SPDX-License-Identifier: Apache-2.0
#include "host/console/columns.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "host/console/text.h"

namespace pciinfo {
namespace {

using Widths = std::vector<std::size_t>;

constexpr std::string_view kGap = "  ";
constexpr std::size_t kLeastText = 10;  // a shorter text is not worth reading
constexpr std::size_t kLeastCell = 4;   // for columns that must not shrink, if nothing else is left

Widths NaturalWidths(const std::vector<Column>& columns, const std::vector<Row>& rows) {
  Widths widths;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    std::size_t width = DisplayWidth(columns[i].heading);
    for (const Row& row : rows) width = std::max(width, DisplayWidth(row[i]));
    widths.push_back(width);
  }
  return widths;
}

std::size_t Total(const Widths& widths) {
  return std::accumulate(widths.begin(), widths.end(), kGap.size() * (widths.size() - 1));
}

/// The widest column that may shrink (any column with `all`) and is wider than `least`; null if
/// none.
std::size_t* WidestShrinkable(Widths& widths, const std::vector<Column>& columns, bool all,
                              std::size_t least) {
  std::size_t* widest = nullptr;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    if ((!all && !columns[i].shrinks) || widths[i] <= least) continue;
    if (widest == nullptr || widths[i] > *widest) widest = &widths[i];
  }
  return widest;
}

void Shrink(Widths& widths, const std::vector<Column>& columns, std::size_t limit) {
  for (std::size_t total = Total(widths); total > limit; --total) {
    std::size_t* widest = WidestShrinkable(widths, columns, false, kLeastText);
    if (widest == nullptr) widest = WidestShrinkable(widths, columns, true, kLeastCell);
    if (widest == nullptr) return;
    --*widest;
  }
}

std::string Line(const Row& row, const Widths& widths, const std::vector<Colour>& colours,
                 const Terminal& terminal) {
  std::string line;
  std::size_t blanks = 0;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const std::string cell = TrimEnd(Cut(row[i], widths[i]));
    if (!cell.empty()) {
      line.append(blanks, ' ').append(Coloured(cell, colours[i], terminal));
      blanks = 0;
    }
    blanks += widths[i] - DisplayWidth(cell) + kGap.size();
  }
  return line;
}

}  // namespace

std::vector<std::string> FormatTable(const std::vector<Column>& columns,
                                     const std::vector<Row>& rows, const Terminal& terminal) {
  Widths widths = NaturalWidths(columns, rows);
  if (terminal.width) Shrink(widths, columns, *terminal.width);
  Row headings;
  std::vector<Colour> colours;
  for (const Column& column : columns) {
    headings.push_back(column.heading);
    colours.push_back(column.colour);
  }
  const std::vector<Colour> bold(columns.size(), Colour::kBold);
  std::vector<std::string> lines = {Line(headings, widths, bold, terminal)};
  for (const Row& row : rows) lines.push_back(Line(row, widths, colours, terminal));
  return lines;
}

void WriteLines(Output& output, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    output.Write(line);
    output.Write("\n");
  }
}

std::string FitLine(std::string_view line, const Terminal& terminal) {
  return TrimEnd(terminal.width ? Cut(line, *terminal.width) : std::string(line));
}

}  // namespace pciinfo
