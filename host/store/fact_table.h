// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace pciinfo {

/// A table that ends in _fact: its columns besides `machine`, `first_seen`, `last_seen`, `gone`
/// and `began_later`.
/// A row has the values of `keys`, `facts` and `latest`, in this order.
struct FactTable {
  std::string name;
  std::vector<std::string> keys;    ///< tell the rows of a machine apart
  std::vector<std::string> facts;   ///< begin a new row when they change
  std::vector<std::string> latest;  ///< are overwritten when they change

  std::size_t Width() const { return keys.size() + facts.size() + latest.size(); }
};

/// The statements on such a table, with their parameters :p1, :p2, ...
struct FactStatements {
  std::string read;    ///< p1 machine: first_seen and the row of all that holds
  std::string close;   ///< p1 gone, p2 last_seen, then what names a row
  std::string remove;  ///< what names a row: machine, first_seen, the keys
  std::string update;  ///< the latest values, then what names a row; empty if there are none
};

FactStatements StatementsFor(const FactTable& table);

/// Returns the statement that inserts so many rows; its parameters are for each the machine,
/// first_seen, began_later and the row.
std::string InsertStatement(const FactTable& table, std::size_t rows);

}  // namespace pciinfo
