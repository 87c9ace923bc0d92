// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/console/terminal.h"

namespace pciinfo {

/// One column of a table. When lines are too long for the terminal, columns leave, then cells are
/// cut.
struct Column {
  std::string heading;
  bool shrinks = false;  ///< for long texts: shrinks first when a line is too long
  Colour colour = Colour::kNone;
  int leaves = 0;          ///< the highest number leaves first; 0 always stays
  bool isSubject = false;  ///< what the table is about: shrinks last, and is cut in the middle
};

/// The cells of a row, printable UTF-8, one for each column.
using Row = std::vector<std::string>;

/// Returns the lines of a table, without line ends: the headings, then the rows. Each column is as
/// wide as its widest cell; two spaces separate columns; lines have no trailing spaces. On a
/// terminal, lines are made to fit: columns that may leave do so until the subject has room enough
/// to be read; then cells are cut, first in columns with `shrinks`, the widest first, and in the
/// subject last.
std::vector<std::string> FormatTable(const std::vector<Column>& columns,
                                     const std::vector<Row>& rows, const Terminal& terminal);

/// Writes each line and a line end.
void WriteLines(Output& output, const std::vector<std::string>& lines);

/// Returns the lines of a sentence: on a terminal it is broken between words, and further lines are
/// indented by two columns.
std::vector<std::string> Wrapped(std::string_view text, const Terminal& terminal);

/// Cuts a printable line to the width of the terminal and removes trailing spaces.
std::string FitLine(std::string_view line, const Terminal& terminal);

}  // namespace pciinfo
