// SPDX-License-Identifier: Apache-2.0
#include "host/views/slots_view.h"

#include <nlohmann/json.hpp>

#include "host/console/columns.h"
#include "host/console/safe_json.h"
#include "host/console/text.h"
#include "host/model/smbios_names.h"
#include "host/views/function_json.h"
#include "host/views/slot_json.h"

namespace pciinfo {
namespace {

const std::vector<Column> kSlotColumns = {
    {"TAG"},    {"DESIGNATION", true, Colour::kGreen}, {"TYPE", true}, {"USAGE"}, {"WIDTH"}, {"ID"},
    {"HOTPLUG"}};

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
                    std::string_view indent, const Terminal& terminal) {
  for (const PciFunction& function : functions) {
    const std::string line = AddressText(function) + "  " + Printable(function.description);
    output.Write(FitLine(std::string(indent) + line, terminal));
    output.Write("\n");
  }
}

using Json = nlohmann::ordered_json;

template <class Item>
void WriteArray(Output& output, const std::vector<Item>& items, Json (*toJson)(const Item&)) {
  output.Write("[");
  bool first = true;
  for (const Item& item : items) {
    output.Write(first ? "\n" : ",\n");
    first = false;
    output.Write(SafeJson(toJson(item).dump()));
  }
  output.Write(first ? "]" : "\n]");
}

}  // namespace

void WriteSlotsTable(Output& output, const SlotsModel& model, const Terminal& terminal) {
  std::vector<Row> rows;
  for (const Slot& slot : model.slots) rows.push_back(SlotRow(slot));
  const std::vector<std::string> lines = FormatTable(kSlotColumns, rows, terminal);
  if (!model.slots.empty()) output.Write(lines.front() + "\n");
  for (std::size_t i = 0; i < model.slots.size(); ++i) {
    output.Write(lines[i + 1] + "\n");
    WriteFunctions(output, model.slots[i].functions, "        ", terminal);
  }
  if (model.onBoard.empty()) return;
  if (!model.slots.empty()) output.Write("\n");
  output.Write(Coloured("On board:", Colour::kBold, terminal) + "\n");
  WriteFunctions(output, model.onBoard, "  ", terminal);
}

void WriteSlotsJson(Output& output, const SlotsModel& model) {
  output.Write("{\"slots\":");
  WriteArray(output, model.slots, &SlotJson);
  output.Write(",\"onBoard\":");
  WriteArray(output, model.onBoard, &FunctionJson);
  output.Write("}\n");
}

}  // namespace pciinfo
