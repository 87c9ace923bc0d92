// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/console/terminal.h"

namespace pciinfo {

/// One column of a table.
struct Column {
  std::string heading;
  bool shrinks = false;  ///< for long texts: shrinks first when a line is too long
  Colour colour = Colour::kNone;
};

/// The cells of a row, printable UTF-8, one for each column.
using Row = std::vector<std::string>;

/// Returns the lines of a table, without line ends: the headings, then the rows. Each column is as
/// wide as its widest cell; two spaces separate columns; lines have no trailing spaces. On a
/// terminal, cells are cut so that the lines fit: first in columns with `shrinks`, the widest
/// first.
std::vector<std::string> FormatTable(const std::vector<Column>& columns,
                                     const std::vector<Row>& rows, const Terminal& terminal);

/// Writes each line and a line end.
void WriteLines(Output& output, const std::vector<std::string>& lines);

/// Cuts a printable line to the width of the terminal and removes trailing spaces.
std::string FitLine(std::string_view line, const Terminal& terminal);

}  // namespace pciinfo
