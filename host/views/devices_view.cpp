// SPDX-License-Identifier: Apache-2.0
#include "host/views/devices_view.h"

#include <nlohmann/json.hpp>

#include "host/console/columns.h"
#include "host/console/safe_json.h"
#include "host/console/text.h"
#include "host/model/pci_function.h"
#include "host/views/function_json.h"

namespace pciinfo {

void WriteDevicesTable(Output& output, const vtq::Namespace& repository, const Terminal& terminal) {
  const std::vector<Column> columns = {
      {"ADDRESS", false, Colour::kCyan}, {"KIND"}, {"ID"}, {"DESCRIPTION", true}};
  std::vector<Row> rows;
  for (const PciFunction& function : ReadFunctions(repository)) {
    rows.push_back(
        {AddressText(function), function.kind, IdText(function), Printable(function.description)});
  }
  WriteLines(output, FormatTable(columns, rows, terminal));
}

void WriteDevicesJson(Output& output, const vtq::Namespace& repository) {
  output.Write("{\"functions\":[");
  const char* separator = "\n";
  for (const PciFunction& function : ReadFunctions(repository)) {
    output.Write(separator);
    output.Write(SafeJson(FunctionJson(function).dump()));
    separator = ",\n";
  }
  output.Write("\n]}\n");
}

}  // namespace pciinfo
