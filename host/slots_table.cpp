#include <functional>

#include "host/columns.h"
#include "host/slots_view.h"
#include "host/smbios_names.h"
#include "host/text.h"

namespace pciinfo {
namespace {

constexpr std::size_t kLineWidth = 100;

// The widest cells with two blanks between them make a line of kLineWidth.
const std::vector<Column> kSlotColumns = {{"TAG", 8},    {"DESIGNATION", 26}, {"TYPE", 24},
                                          {"USAGE", 11}, {"WIDTH", 7},        {"ID", 5},
                                          {"HOTPLUG", 7}};
constexpr std::size_t kDesignation = 1;
constexpr std::size_t kType = 2;

/// The columns for these rows: what the others leave of the line goes to the long texts.
std::vector<Column> ColumnsFor(const std::vector<Row>& rows) {
  std::vector<Column> columns = kSlotColumns;
  for (const std::size_t wide : {kDesignation, kType}) {
    columns[wide].widest += kLineWidth - TableWidth(columns, rows);
  }
  return columns;
}

std::string CodeCell(const std::optional<unsigned>& code, std::string (*text)(unsigned)) {
  return code ? text(*code) : "-";
}

std::string HotPlugCell(const std::optional<bool>& hotPlug) {
  if (!hotPlug) return "-";
  return *hotPlug ? "yes" : "no";
}

std::string DesignationCell(const Slot& slot) {
  const std::string trimmed = TrimEnd(Printable(slot.designation.value_or("")));
  return trimmed.empty() ? "-" : trimmed;
}

Row SlotRow(const Slot& slot) {
  return {Printable(slot.tag),
          DesignationCell(slot),
          CodeCell(slot.type, ConnectorTypeText),
          CodeCell(slot.usage, SlotUsageText),
          CodeCell(slot.width, SlotWidthText),
          slot.id ? std::to_string(*slot.id) : "-",
          HotPlugCell(slot.hotPlug)};
}

void WriteFunctions(Output& output, const std::vector<PciFunction>& functions,
                    std::string_view indent) {
  for (const PciFunction& function : functions) {
    const std::string line = AddressText(function) + "  " + Printable(function.description);
    output.Write(TrimEnd(Cut(std::string(indent) + line, kLineWidth)));
    output.Write("\n");
  }
}

}  // namespace

void WriteSlotsTable(Output& output, const SlotsModel& model) {
  std::vector<Row> rows;
  for (const Slot& slot : model.slots) rows.push_back(SlotRow(slot));
  const std::vector<std::string> lines = FormatTable(ColumnsFor(rows), rows);
  if (!model.slots.empty()) output.Write(lines.front() + "\n");
  for (std::size_t i = 0; i < model.slots.size(); ++i) {
    output.Write(lines[i + 1] + "\n");
    WriteFunctions(output, model.slots[i].functions, "        ");
  }
  if (model.onBoard.empty()) return;
  output.Write(model.slots.empty() ? "On board:\n" : "\nOn board:\n");
  WriteFunctions(output, model.onBoard, "  ");
}

}  // namespace pciinfo
