#pragma once

#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/console/terminal.h"

namespace pciinfo {

/// One column of a table.
struct Column {
  std::string heading;
  bool gives = false;  ///< a column of long texts: gives its room when a line is too long
  Colour colour = Colour::kNone;
};

/// A row's cells, printable UTF-8, one for each column.
using Row = std::vector<std::string>;

/// The lines of a table without its line ends: the headings, then the rows. Every column is as wide
/// as its widest cell, two blanks apart; no line ends in blanks. On a terminal, cells are cut so
/// that the lines fit: those of the columns that give room first, the longest of them first.
std::vector<std::string> FormatTable(const std::vector<Column>& columns,
                                     const std::vector<Row>& rows, const Terminal& terminal);

/// Writes each line and a line end.
void WriteLines(Output& output, const std::vector<std::string>& lines);

/// A line that stands alone, printable, as it fits the terminal: cut, without blanks at its end.
std::string FitLine(std::string_view line, const Terminal& terminal);

}  // namespace pciinfo
