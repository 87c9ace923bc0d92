// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/console/columns.h"
#include "host/fleet/row_sink.h"

namespace pciinfo {

/// How a table shows the column of an answer that has this name.
struct ShownColumn {
  std::string name;
  Column column;
};

/// How an answer is shown.
struct RowFormat {
  std::string format;                ///< "table", "json", "jsonl", "csv" or "yaml"
  std::string key;                   ///< of JSON and YAML: the name of the list of rows
  std::vector<ShownColumn> columns;  ///< of the table; empty: all, under their own names
  Terminal terminal;
};

/// Makes what writes rows in one format; docs/fleet.md describes them. A table is kept until its
/// end, the other formats keep no row. `output` must outlive the result.
std::unique_ptr<RowSink> MakeRowWriter(const RowFormat& form, Output& output);

}  // namespace pciinfo
