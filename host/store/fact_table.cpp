// SPDX-License-Identifier: Apache-2.0
#include "host/store/fact_table.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace pciinfo {
namespace {

using Names = std::vector<std::string>;

Names ColumnsOf(const FactTable& table) {
  Names columns = table.keys;
  columns.insert(columns.end(), table.facts.begin(), table.facts.end());
  columns.insert(columns.end(), table.latest.begin(), table.latest.end());
  return columns;
}

/// Returns "(:p5, :p6, ...)".
std::string Parameters(std::size_t first, std::size_t count) {
  Names names;
  names.reserve(count);
  for (std::size_t i = first; i < first + count; ++i) names.push_back(fmt::format(":p{}", i));
  return fmt::format("({})", fmt::join(names, ", "));
}

/// Returns "first = :p5, second = :p6" with `between` in the place of the comma.
std::string Assignments(const Names& names, std::size_t firstParameter, const char* between) {
  Names texts;
  texts.reserve(names.size());
  for (const std::string& name : names) {
    texts.push_back(fmt::format("{} = :p{}", name, firstParameter++));
  }
  return fmt::format("{}", fmt::join(texts, between));
}

/// The condition for one row; its parameters begin with this one.
std::string RowCondition(const FactTable& table, std::size_t firstParameter) {
  Names names = {"machine", "first_seen"};
  names.insert(names.end(), table.keys.begin(), table.keys.end());
  return Assignments(names, firstParameter, " AND ");
}

}  // namespace

FactStatements StatementsFor(const FactTable& table) {
  const std::string columns = fmt::format("{}", fmt::join(ColumnsOf(table), ", "));
  const std::size_t latest = table.latest.size();
  return {
      fmt::format("SELECT first_seen, {} FROM {} WHERE machine = :p1 AND gone IS NULL", columns,
                  table.name),
      fmt::format("UPDATE {} SET gone = :p1, last_seen = :p2 WHERE {}", table.name,
                  RowCondition(table, 3)),
      fmt::format("DELETE FROM {} WHERE {}", table.name, RowCondition(table, 1)),
      latest == 0
          ? ""
          : fmt::format("UPDATE {} SET {} WHERE {}", table.name, Assignments(table.latest, 1, ", "),
                        RowCondition(table, latest + 1)),
  };
}

std::string InsertStatement(const FactTable& table, std::size_t rows) {
  const std::size_t width = 3 + table.Width();
  Names values;
  values.reserve(rows);
  for (std::size_t i = 0; i < rows; ++i) values.push_back(Parameters(1 + i * width, width));
  return fmt::format("INSERT INTO {} (machine, first_seen, began_later, {}) VALUES {}", table.name,
                     fmt::join(ColumnsOf(table), ", "), fmt::join(values, ", "));
}

}  // namespace pciinfo
