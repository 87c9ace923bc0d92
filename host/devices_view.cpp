#include "host/devices_view.h"

#include <nlohmann/json.hpp>

#include "host/columns.h"
#include "host/function_json.h"
#include "host/pci_function.h"
#include "host/text.h"

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
    output.Write(FunctionJson(function).dump());
    separator = ",\n";
  }
  output.Write("\n]}\n");
}

}  // namespace pciinfo
