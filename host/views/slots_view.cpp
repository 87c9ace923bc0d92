// SPDX-License-Identifier: Apache-2.0
#include "host/views/slots_view.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/console/columns.h"
#include "host/console/safe_json.h"
#include "host/console/text.h"
#include "host/formats/csv_text.h"
#include "host/formats/yaml_writer.h"
#include "host/machine/link_text.h"
#include "host/machine/machine_filter.h"
#include "host/machine/names.h"
#include "host/model/smbios_names.h"
#include "host/record/machine_json.h"
#include "host/views/place_sections.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

/// What a line of CSV is about: a slot, and a function in it, if there is one.
struct SlotEntry {
  const MachineSlot& slot;
  const MachineFunction* function;
  const MachineModel& machine;
};

struct SlotColumn {
  const char* name;
  Column column;
  std::string (*text)(const SlotEntry& entry);  ///< for CSV
};

constexpr std::size_t kAddressCell = 7;
constexpr std::size_t kCardCell = 8;

std::string WidthCell(const MachineSlot& slot) {
  constexpr unsigned kOther = 1;
  constexpr unsigned kUnknown = 2;
  if (!slot.width || slot.width == kOther || slot.width == kUnknown) return "";
  return SlotWidthText(*slot.width);
}

std::string PortCell(const MachineSlot& slot, const MachineModel& machine) {
  std::string text;
  for (const std::string& port : slot.ports) {
    text += (text.empty() ? "" : ", ") + ShortAddress(port, machine);
  }
  return text;
}

std::string CertaintyOf(const MachineSlot& slot, const MachineModel& machine) {
  if (slot.functions.empty()) return "";
  return Printable(machine.functions[slot.functions.front()].certainty);
}

/// The link of an empty slot does nothing, and that of a shared port is not the slot's.
std::string LinkCell(const MachineSlot& slot) {
  if (slot.state == SlotState::kUnknown) return "";
  return slot.state == SlotState::kEmpty ? MostLinkText(slot.link) : LinkText(slot.link);
}

/// Adds a row for each card in the slot, the first of them with the slot.
void AddRows(std::vector<Row>& rows, const MachineSlot& slot, const MachineModel& machine) {
  Row row = {NameOf(slot, machine),
             ShortAddress(slot.firmwareAddress, machine),
             PortCell(slot, machine),
             WidthCell(slot),
             LinkCell(slot),
             StateText(slot),
             CertaintyOf(slot, machine),
             "",
             ""};
  const auto cards = CardsOf(machine.FunctionsOf(slot.functions), machine.HasDomains());
  if (cards.empty()) {
    row[kCardCell] = InsteadOfCards(slot, machine);
    rows.push_back(row);
  }
  for (const Card& card : cards) {
    AddCard(rows, row, kAddressCell, card);
    row = Row(row.size());
  }
}

std::string SlotField(const SlotEntry& entry) { return NameOf(entry.slot, entry.machine); }

std::string FirmwareField(const SlotEntry& entry) { return Printable(entry.slot.firmwareAddress); }

std::string PortField(const SlotEntry& entry) {
  return Printable(fmt::format("{}", fmt::join(entry.slot.ports, ", ")));
}

std::string WidthField(const SlotEntry& entry) { return WidthCell(entry.slot); }

std::string LinkField(const SlotEntry& entry) { return LinkCell(entry.slot); }

std::string StateField(const SlotEntry& entry) { return StateText(entry.slot); }

std::string CertaintyField(const SlotEntry& entry) {
  return CertaintyOf(entry.slot, entry.machine);
}

std::string AddressField(const SlotEntry& entry) {
  return entry.function == nullptr ? "" : FormatAddress(entry.function->address);
}

std::string CardField(const SlotEntry& entry) {
  return entry.function == nullptr ? "" : MakerAndModel(*entry.function);
}

const std::vector<SlotColumn>& AllSlotColumns() {
  static const std::vector<SlotColumn> columns = {
      {"slot", {"SLOT", true, Colour::kGreen}, &SlotField},
      {"firmware", {.heading = "FIRMWARE", .leaves = 6}, &FirmwareField},
      {"port", {.heading = "PORT", .leaves = 4}, &PortField},
      {"width", {.heading = "WIDTH", .leaves = 2}, &WidthField},
      {"link", {.heading = "LINK", .leaves = 5}, &LinkField},
      {"state", {"STATE"}, &StateField},
      {"certainty", {.heading = "CERTAINTY", .leaves = 3}, &CertaintyField},
      {"address", {.heading = "ADDRESS", .colour = Colour::kCyan}, &AddressField},
      {"card", {.heading = "CARD", .isSubject = true}, &CardField},
  };
  return columns;
}

/// The places of columns in AllSlotColumns.
std::vector<std::size_t> PlacesOf(const std::vector<std::string>& names) {
  std::vector<std::size_t> places;
  places.reserve(names.size());
  const std::vector<std::string> all = SlotColumns();
  for (const std::string& name : names) {
    places.push_back(
        static_cast<std::size_t>(std::find(all.begin(), all.end(), name) - all.begin()));
  }
  return places;
}

std::vector<std::string> FieldsOf(const SlotEntry& entry, const std::vector<std::string>& names) {
  std::vector<std::string> fields;
  fields.reserve(names.size());
  for (const std::size_t place : PlacesOf(names)) {
    fields.push_back(AllSlotColumns()[place].text(entry));
  }
  return fields;
}

/// Columns that the user has chosen stay.
std::vector<Column> TableColumns(const std::vector<std::string>& names) {
  const std::vector<std::size_t> places = PlacesOf(names.empty() ? SlotColumns() : names);
  std::vector<Column> columns;
  columns.reserve(places.size());
  for (const std::size_t place : places) {
    columns.push_back(AllSlotColumns()[place].column);
    if (!names.empty()) columns.back().leaves = 0;
  }
  return columns;
}

/// Takes the cells of the columns out of rows of all cells, and leaves out rows without any.
std::vector<Row> RowsOf(const std::vector<Row>& rows, const std::vector<std::string>& names) {
  if (names.empty()) return rows;
  const std::vector<std::size_t> places = PlacesOf(names);
  std::vector<Row> shown;
  shown.reserve(rows.size());
  for (const Row& row : rows) {
    Row& cells = shown.emplace_back();
    cells.reserve(places.size());
    for (const std::size_t place : places) cells.push_back(row[place]);
    const auto isEmpty = [](const std::string& cell) { return cell.empty(); };
    if (std::all_of(cells.begin(), cells.end(), isEmpty)) shown.pop_back();
  }
  return shown;
}

}  // namespace

MachineModel ChosenSlots(MachineModel machine, SlotChoice choice) {
  if (choice == SlotChoice::kAll) return machine;
  const SlotState state = choice == SlotChoice::kFree ? SlotState::kEmpty : SlotState::kOccupied;
  const auto isChosen = [state](const MachineSlot& slot) { return slot.state == state; };
  return PartOf(
      machine,
      [&](const MachineFunction& function) {
        return function.slot && isChosen(machine.slots[*function.slot]);
      },
      isChosen);
}

std::vector<std::string> SlotColumns() {
  std::vector<std::string> names;
  for (const SlotColumn& column : AllSlotColumns()) names.emplace_back(column.name);
  return names;
}

void WriteSlotsTable(Output& output, const MachineModel& machine,
                     const std::vector<std::string>& columns, const Terminal& terminal) {
  PlaceSections sections(output, machine, terminal);
  std::vector<Row> rows;
  for (const bool isNamed : {true, false}) {
    for (const MachineSlot& slot : machine.slots) {
      if (slot.IsNamed() == isNamed) AddRows(rows, slot, machine);
    }
  }
  if (!rows.empty()) sections.WriteTable("", TableColumns(columns), RowsOf(rows, columns));
  sections.WriteShared();
  sections.WriteCards("On board", machine.FunctionsAt(FunctionPlace::kOnBoard));
  sections.WriteUnknown();
  sections.WriteSentences("Slots that lead nowhere", Unmatched(machine));
  sections.WriteSentences("Contradictions", Contradictions(machine));
}

void WriteSlotsJson(Output& output, const MachineModel& machine) {
  WriteJsonLines(output, MachineJson(machine));
}

void WriteSlotsJsonLines(Output& output, const MachineModel& machine, const MachineStamp& stamp) {
  const std::string head = "{" + StampText(stamp);
  for (const MachineSlot& slot : machine.slots) {
    output.Write(head + SafeJson(SlotJson(slot, machine).dump()).substr(1) + "\n");
  }
}

void WriteSlotsYaml(Output& output, const MachineModel& machine) {
  WriteYaml(output, MachineJson(machine));
}

void WriteSlotsCsv(Output& output, const MachineModel& machine,
                   const std::vector<std::string>& columns) {
  const std::vector<std::string> names = columns.empty() ? SlotColumns() : columns;
  WriteCsvLine(output, names);
  for (const MachineSlot& slot : machine.slots) {
    std::vector<const MachineFunction*> functions = machine.FunctionsOf(slot.functions);
    if (functions.empty()) functions.push_back(nullptr);
    for (const MachineFunction* const function : functions) {
      WriteCsvLine(output, FieldsOf({slot, function, machine}, names));
    }
  }
}

}  // namespace pciinfo
