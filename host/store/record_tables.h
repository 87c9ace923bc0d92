// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/record/machine_record.h"
#include "host/store/fact_table.h"
#include "host/store/values.h"

namespace pciinfo {

/// Returns the key of a function's model in the table `card_model`.
using ModelLookup = std::function<std::string(const RecordedFunction& function)>;

/// A table of facts, and how a machine is written to it.
struct RecordTable {
  FactTable table;
  /// Throws BadRecord for a machine that no database can take.
  std::vector<Row> (*rowsOf)(const MachineRecord& record, const ModelLookup& lookup);
};

/// All tables that end in _fact.
const std::vector<RecordTable>& RecordTables();

/// Takes from a record what tells one device from all others of its model: serial numbers and
/// hardware addresses.
void RemoveDeviceIdentifiers(MachineRecord& record);

}  // namespace pciinfo
