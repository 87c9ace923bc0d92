// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/export.h"
#include "host/fleet/row_sink.h"

namespace pciinfo {

/// A statement of SQL, and the values of its parameters $1, $2 and so on.
struct FleetStatement {
  std::string sql;
  std::vector<std::string> values = {};
  bool isOfUser = false;  ///< the user wrote it: only a query is accepted
};

/// A database of machines, opened for reading only.
class VTQ_EXPORT FleetDatabase {
 public:
  virtual ~FleetDatabase() = default;

  /// Gives the rows of the statement to the sink. Throws std::runtime_error with what the database
  /// says; it refuses all that writes.
  virtual void Ask(const FleetStatement& statement, RowSink& sink) = 0;
};

/// Opens the database that `pciinfo store` calls `target`, and creates none. Throws UsageError and
/// std::runtime_error, which say why it cannot be asked.
std::unique_ptr<FleetDatabase> OpenFleet(const std::string& target);

}  // namespace pciinfo
