// SPDX-License-Identifier: Apache-2.0
#include "host/views/slots_view.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/console/columns.h"
#include "host/console/text.h"
#include "host/machine/link_text.h"
#include "host/machine/machine_filter.h"
#include "host/model/smbios_names.h"
#include "host/views/machine_json.h"
#include "host/views/place_sections.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

const std::vector<Column> kSlotColumns = {
    {"SLOT", true, Colour::kGreen},        {.heading = "FIRMWARE", .leaves = 6},
    {.heading = "PORT", .leaves = 4},      {.heading = "WIDTH", .leaves = 2},
    {.heading = "LINK", .leaves = 5},      {"STATE"},
    {.heading = "CERTAINTY", .leaves = 3}, {.heading = "ADDRESS", .colour = Colour::kCyan},
    {.heading = "CARD", .isSubject = true}};

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

}  // namespace

MachineModel ChosenSlots(const MachineModel& machine, SlotChoice choice) {
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

void WriteSlotsTable(Output& output, const MachineModel& machine, const Terminal& terminal) {
  PlaceSections sections(output, machine, terminal);
  std::vector<Row> rows;
  for (const bool isNamed : {true, false}) {
    for (const MachineSlot& slot : machine.slots) {
      if (slot.IsNamed() == isNamed) AddRows(rows, slot, machine);
    }
  }
  if (!rows.empty()) sections.WriteTable("", kSlotColumns, rows);
  sections.WriteShared();
  sections.WriteCards("On board", machine.FunctionsAt(FunctionPlace::kOnBoard));
  sections.WriteUnknown();
  sections.WriteSentences("Slots that lead nowhere", Unmatched(machine));
  sections.WriteSentences("Contradictions", Contradictions(machine));
}

void WriteSlotsJson(Output& output, const MachineModel& machine) {
  WriteJsonLines(output, MachineJson(machine));
}

}  // namespace pciinfo
