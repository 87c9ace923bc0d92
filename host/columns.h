#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/output.h"

namespace pciinfo {

/// One column of a table.
struct Column {
  std::string heading;
  std::size_t widest;  ///< cells are cut to this many columns of the terminal; 0: never cut
};

/// A row's cells, printable UTF-8, one for each column.
using Row = std::vector<std::string>;

/// The columns of the terminal that the longest line of such a table can take.
std::size_t TableWidth(const std::vector<Column>& columns, const std::vector<Row>& rows);

/// The lines of a table without its line ends: the headings, then the rows. Every column is as wide
/// as its widest cell, two blanks apart; no line ends in blanks.
std::vector<std::string> FormatTable(const std::vector<Column>& columns,
                                     const std::vector<Row>& rows);

/// Writes each line and a line end.
void WriteLines(Output& output, const std::vector<std::string>& lines);

}  // namespace pciinfo
