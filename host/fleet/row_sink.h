// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "framework/export.h"

namespace pciinfo {

/// A value as a database has it; the first alternative is null.
using DbValue = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

/// The values of a row, one for each column.
using DbRow = std::vector<DbValue>;

/// Takes the rows of an answer, one at a time. Call Begin with the names of the columns, then Write
/// for each row, then End. All throw what Output throws.
class VTQ_EXPORT RowSink {
 public:
  virtual ~RowSink() = default;

  /// Throws std::runtime_error for names that the format cannot hold.
  virtual void Begin(const std::vector<std::string>& names) = 0;
  virtual void Write(const DbRow& row) = 0;
  virtual void End() = 0;
};

}  // namespace pciinfo
