// SPDX-License-Identifier: Apache-2.0
#include "host/console/columns.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <string_view>

#include "host/console/text.h"

namespace pciinfo {
namespace {

using Widths = std::vector<std::size_t>;

constexpr std::string_view kGap = "  ";
constexpr std::size_t kLeastText = 10;  // a shorter text is not worth reading
constexpr std::size_t kReadable = 40;   // the subject has this room before other columns stay
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

/// The width of the widest column for which `shrinks` is true and which is wider than `least`; null
/// if there is none.
template <class Shrinks>
std::size_t* WidestShrinkable(Widths& widths, const std::vector<Column>& columns, std::size_t least,
                              const Shrinks& shrinks) {
  std::size_t* widest = nullptr;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    if (!shrinks(columns[i]) || widths[i] <= least) continue;
    if (widest == nullptr || widths[i] > *widest) widest = &widths[i];
  }
  return widest;
}

std::size_t* NextToShrink(Widths& widths, const std::vector<Column>& columns) {
  const auto isText = [](const Column& column) { return column.shrinks && !column.isSubject; };
  const auto isSubject = [](const Column& column) { return column.isSubject; };
  const auto isAny = [](const Column&) { return true; };
  if (auto* width = WidestShrinkable(widths, columns, kLeastText, isText)) return width;
  if (auto* width = WidestShrinkable(widths, columns, kLeastText, isSubject)) return width;
  return WidestShrinkable(widths, columns, kLeastCell, isAny);
}

void Shrink(Widths& widths, const std::vector<Column>& columns, std::size_t limit) {
  for (std::size_t total = Total(widths); total > limit; --total) {
    std::size_t* widest = NextToShrink(widths, columns);
    if (widest == nullptr) return;
    --*widest;
  }
}

/// The total width once every text is as short as it may be and the subject can still be read.
std::size_t ReadableTotal(const Widths& widths, const std::vector<Column>& columns) {
  Widths least = widths;
  for (std::size_t i = 0; i < least.size(); ++i) {
    const std::size_t room = columns[i].isSubject ? kReadable : 2 * kLeastText;
    if (columns[i].isSubject || columns[i].shrinks) least[i] = std::min(least[i], room);
  }
  return Total(least);
}

/// The places of the columns that stay on a terminal of this width.
std::vector<std::size_t> StayingColumns(const std::vector<Column>& columns, const Widths& widths,
                                        std::size_t limit) {
  std::vector<std::size_t> places(columns.size());
  std::iota(places.begin(), places.end(), std::size_t{0});
  for (;;) {
    Widths left;
    std::vector<Column> staying;
    auto next = places.begin();
    for (auto place = places.begin(); place != places.end(); ++place) {
      left.push_back(widths[*place]);
      staying.push_back(columns[*place]);
      if (columns[*place].leaves > columns[*next].leaves) next = place;
    }
    if (places.empty() || columns[*next].leaves == 0 || ReadableTotal(left, staying) <= limit) {
      return places;
    }
    places.erase(next);
  }
}

template <class Item>
std::vector<Item> Picked(const std::vector<Item>& items, const std::vector<std::size_t>& places) {
  std::vector<Item> picked;
  picked.reserve(places.size());
  for (const std::size_t place : places) picked.push_back(items[place]);
  return picked;
}

/// What is shown of a cell, without blanks at the end. `cut` holds the text of a cell that is too
/// wide.
std::string_view ShownOf(std::string_view cell, const Column& column, std::size_t width,
                         std::string& cut) {
  if (DisplayWidth(cell) > width) {
    cut = column.isSubject ? CutMiddle(cell, width) : Cut(cell, width);
    cell = cut;
  }
  return cell.substr(0, cell.find_last_not_of(' ') + 1);
}

/// The line of a row of which the cells at `places` are shown.
std::string Line(const Row& row, const std::vector<std::size_t>& places, const Widths& widths,
                 const std::vector<Column>& columns, const Terminal& terminal) {
  std::string line;
  line.reserve(Total(widths));
  std::string cut;
  std::size_t blanks = 0;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const std::string_view cell = ShownOf(row[places[i]], columns[i], widths[i], cut);
    if (!cell.empty()) {
      line.append(blanks, ' ').append(Coloured(cell, columns[i].colour, terminal));
      blanks = 0;
    }
    blanks += widths[i] - DisplayWidth(cell) + kGap.size();
  }
  return line;
}

}  // namespace

std::vector<std::string> FormatTable(const std::vector<Column>& columns,
                                     const std::vector<Row>& rows, const Terminal& terminal) {
  const Widths natural = NaturalWidths(columns, rows);
  const std::vector<std::size_t> places = StayingColumns(
      columns, natural, terminal.width.value_or(std::numeric_limits<std::size_t>::max()));
  const std::vector<Column> staying = Picked(columns, places);
  Widths widths = Picked(natural, places);
  if (terminal.width) Shrink(widths, staying, *terminal.width);
  Row headings;
  headings.reserve(columns.size());
  for (const Column& column : columns) headings.push_back(column.heading);
  std::vector<Column> bold = staying;
  for (Column& column : bold) column.colour = Colour::kBold;
  std::vector<std::string> lines;
  lines.reserve(rows.size() + 1);
  lines.push_back(Line(headings, places, widths, bold, terminal));
  for (const Row& row : rows) lines.push_back(Line(row, places, widths, staying, terminal));
  return lines;
}

void WriteLines(Output& output, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    output.Write(line);
    output.Write("\n");
  }
}

std::vector<std::string> Wrapped(std::string_view text, const Terminal& terminal) {
  std::vector<std::string> lines(1);
  bool isEmpty = true;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    const std::size_t width = DisplayWidth(lines.back()) + DisplayWidth(word) + (isEmpty ? 0 : 1);
    if (!isEmpty && terminal.width && width > *terminal.width) {
      lines.emplace_back("  ");
      isEmpty = true;
    }
    lines.back().append(isEmpty ? "" : " ").append(word);
    isEmpty = false;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::string FitLine(std::string_view line, const Terminal& terminal) {
  return TrimEnd(terminal.width ? Cut(line, *terminal.width) : std::string(line));
}

}  // namespace pciinfo
