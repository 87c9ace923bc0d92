#include "host/inventory_view.h"

#include "host/columns.h"
#include "host/pci_function.h"
#include "host/text.h"

namespace pciinfo {
namespace {

std::vector<PciFunction> ReadFunctions(const vtq::Namespace& repository) {
  std::vector<PciFunction> functions;
  for (const char* name : {"QZMSG_PCIDevice", "QZMSG_PCIBridge"}) {
    const std::shared_ptr<vtq::Class> cimClass = repository.Find(name);
    for (const auto& instance : cimClass->GetInstances()) {
      functions.push_back(ReadFunction(*cimClass, *instance));
    }
  }
  SortByAddress(functions);
  return functions;
}

}  // namespace

void WriteInventory(Output& output, const vtq::Namespace& repository) {
  std::vector<Row> rows;
  for (const PciFunction& function : ReadFunctions(repository)) {
    rows.push_back(
        {AddressText(function), function.kind, IdText(function), Printable(function.description)});
  }
  // The description stands last and is never cut: whoever wants it short has `cut`.
  WriteLines(output,
             FormatTable({{"ADDRESS", 0}, {"KIND", 0}, {"ID", 0}, {"DESCRIPTION", 0}}, rows));
}

}  // namespace pciinfo
