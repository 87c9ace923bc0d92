// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/store/machine_store.h"
#include "host/store/values.h"

namespace pciinfo {

/// A column of a table, and its value for an object.
template <class Object>
struct Column {
  const char* name;
  Value (*get)(const Object& object);
};

template <class Object>
using Columns = std::vector<Column<Object>>;

template <class Object>
std::vector<std::string> NamesOf(const Columns<Object>& columns) {
  std::vector<std::string> names;
  names.reserve(columns.size());
  for (const Column<Object>& column : columns) names.emplace_back(column.name);
  return names;
}

template <class Object>
void AppendValues(Row& row, const Columns<Object>& columns, const Object& object) {
  for (const Column<Object>& column : columns) row.push_back(column.get(object));
}

/// PostgreSQL's texts end at a null character, which no text of a machine should contain.
inline Value TextValue(const std::string& text) { return text.substr(0, text.find('\0')); }

/// Throws BadRecord for a number that the columns cannot hold.
template <class Number>
Value NumberValue(const std::optional<Number>& number) {
  if (!number) return std::nullopt;
  if (std::cmp_greater(*number, std::numeric_limits<int>::max())) {
    throw BadRecord("a number in it is too large: " + std::to_string(*number));
  }
  return std::to_string(*number);
}

inline Value FlagValue(bool flag) { return flag ? "1" : "0"; }

}  // namespace pciinfo
