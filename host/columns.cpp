#include "host/columns.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "host/text.h"

namespace pciinfo {
namespace {

std::string Fit(const std::string& cell, const Column& column) {
  return column.widest == 0 ? cell : Cut(cell, column.widest);
}

std::vector<std::size_t> Widths(const std::vector<Column>& columns, const std::vector<Row>& rows) {
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    std::size_t width = DisplayWidth(columns[i].heading);
    for (const Row& row : rows) width = std::max(width, DisplayWidth(Fit(row[i], columns[i])));
    widths.push_back(width);
  }
  return widths;
}

constexpr std::string_view kGap = "  ";

}  // namespace

std::size_t TableWidth(const std::vector<Column>& columns, const std::vector<Row>& rows) {
  const std::vector<std::size_t> widths = Widths(columns, rows);
  return std::accumulate(widths.begin(), widths.end(), kGap.size() * (widths.size() - 1));
}

std::vector<std::string> FormatTable(const std::vector<Column>& columns,
                                     const std::vector<Row>& rows) {
  const std::vector<std::size_t> widths = Widths(columns, rows);
  Row headings;
  for (const Column& column : columns) headings.push_back(column.heading);

  std::vector<std::string> lines;
  const auto addLine = [&](const Row& row) {
    std::string line;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      line += PadRight(Fit(row[i], columns[i]), widths[i]).append(kGap);
    }
    lines.push_back(TrimEnd(line));
  };
  addLine(headings);
  std::for_each(rows.begin(), rows.end(), addLine);
  return lines;
}

void WriteLines(Output& output, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    output.Write(line);
    output.Write("\n");
  }
}

}  // namespace pciinfo
