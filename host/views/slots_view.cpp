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

class SlotsTable {
 public:
  SlotsTable(Output& output, const MachineModel& machine, const Terminal& terminal)
      : output_(output), machine_(machine), terminal_(terminal) {}

  void Write() {
    WriteSlots();
    for (const SharedPort& shared : machine_.shared) {
      if (shared.functions.empty()) continue;
      WriteCards(SharedTitle(shared, machine_), machine_.FunctionsOf(shared.functions));
    }
    WriteCards("On board", machine_.FunctionsAt(FunctionPlace::kOnBoard));
    WriteUnknown();
    WriteSentences("Slots that lead nowhere", Unmatched(machine_));
    WriteSentences("Contradictions", Contradictions(machine_));
  }

 private:
  void Title(const std::string& title) {
    if (isStarted_) output_.Write("\n");
    isStarted_ = true;
    WriteParagraph(output_, Coloured(title, Colour::kBold, terminal_), 0, terminal_);
  }

  void WriteSlots() {
    std::vector<Row> rows;
    for (const bool isNamed : {true, false}) {
      for (const MachineSlot& slot : machine_.slots) {
        if (slot.IsNamed() == isNamed) AddRows(rows, slot);
      }
    }
    if (rows.empty()) return;
    WriteLines(output_, FormatTable(kSlotColumns, rows, terminal_));
    isStarted_ = true;
  }

  /// Adds a row for each card in the slot, the first of them with the slot.
  void AddRows(std::vector<Row>& rows, const MachineSlot& slot) {
    Row row = {slot.IsNamed() ? NameOf(slot) : "(no name)",
               ShortAddress(slot.firmwareAddress, machine_),
               PortCell(slot, machine_),
               WidthCell(slot),
               LinkText(slot.link),
               StateText(slot),
               CertaintyOf(slot, machine_),
               "",
               ""};
    const auto cards = CardsOf(machine_.FunctionsOf(slot.functions), machine_.HasDomains());
    if (cards.empty()) {
      row[kCardCell] = InsteadOfCards(slot, machine_);
      rows.push_back(row);
    }
    for (const Card& card : cards) {
      row[kAddressCell] = AddressesText(card);
      row[kCardCell] = card.text;
      rows.push_back(row);
      row = Row(row.size());
    }
  }

  void WriteCards(const std::string& title, FunctionList functions) {
    std::erase_if(functions, [](const auto* function) { return IsBridgeOrChipset(*function); });
    if (functions.empty()) return;
    Title(title);
    std::vector<Row> rows;
    for (const Card& card : CardsOf(functions, machine_.HasDomains())) {
      rows.push_back({AddressesText(card), card.text});
    }
    WriteLines(output_, FormatTable({{.heading = "ADDRESS", .colour = Colour::kCyan},
                                     {.heading = "CARD", .isSubject = true}},
                                    rows, terminal_));
  }

  /// The functions of which the place is unknown, by the reason.
  void WriteUnknown() {
    FunctionList unknown = machine_.FunctionsAt(FunctionPlace::kUnknown);
    while (!unknown.empty()) {
      const std::string reason = unknown.front()->placeReason;
      const auto other = std::stable_partition(
          unknown.begin(), unknown.end(),
          [&reason](const auto* function) { return function->placeReason == reason; });
      WriteCards("Place unknown: " + Printable(reason), {unknown.begin(), other});
      unknown.erase(unknown.begin(), other);
    }
  }

  void WriteSentences(const std::string& title, const std::vector<std::string>& sentences) {
    if (sentences.empty()) return;
    Title(title);
    for (const std::string& sentence : sentences) WriteParagraph(output_, sentence, 0, terminal_);
  }

  Output& output_;
  const MachineModel& machine_;
  const Terminal& terminal_;
  bool isStarted_ = false;
};

nlohmann::ordered_json FunctionsJson(const MachineModel& machine, FunctionPlace place) {
  auto array = nlohmann::ordered_json::array();
  for (const MachineFunction* function : machine.FunctionsAt(place)) {
    array.push_back(FunctionJson(*function, machine));
  }
  return array;
}

nlohmann::ordered_json SlotsJson(const MachineModel& machine, bool isNamed) {
  auto array = nlohmann::ordered_json::array();
  for (const MachineSlot& slot : machine.slots) {
    if (slot.IsNamed() == isNamed) array.push_back(SlotJson(slot, machine));
  }
  return array;
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
  SlotsTable(output, machine, terminal).Write();
}

void WriteSlotsJson(Output& output, const MachineModel& machine) {
  auto shared = nlohmann::ordered_json::array();
  for (const SharedPort& port : machine.shared) shared.push_back(SharedPortJson(port, machine));
  WriteJsonLines(output, {{"slots", SlotsJson(machine, true)},
                          {"shared", std::move(shared)},
                          {"onBoard", FunctionsJson(machine, FunctionPlace::kOnBoard)},
                          {"unnamed", SlotsJson(machine, false)},
                          {"unknown", FunctionsJson(machine, FunctionPlace::kUnknown)},
                          {"conflicts", ConflictsJson(machine)}});
}

}  // namespace pciinfo
