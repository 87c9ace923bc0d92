// SPDX-License-Identifier: Apache-2.0
#include "host/views/place_sections.h"

#include <algorithm>

#include "host/console/text.h"
#include "host/views/place_texts.h"

namespace pciinfo {

void AddCard(std::vector<Row>& rows, Row row, std::size_t addressCell, const Card& card) {
  row[addressCell + 1] = card.text;
  for (std::string& address : AddressLines(card)) {
    row[addressCell] = std::move(address);
    rows.push_back(row);
    row = Row(row.size());
  }
}

PlaceSections::PlaceSections(Output& output, const MachineModel& machine, const Terminal& terminal)
    : output_(output), machine_(machine), terminal_(terminal) {}

void PlaceSections::WriteTitle(const std::string& title) {
  if (isStarted_) output_.Write("\n");
  isStarted_ = true;
  if (title.empty()) return;
  for (const std::string& line : Wrapped(title, terminal_)) {
    output_.Write(Coloured(line, Colour::kBold, terminal_) + "\n");
  }
}

void PlaceSections::WriteTable(const std::string& title, const std::vector<Column>& columns,
                               const std::vector<Row>& rows) {
  if (rows.empty()) return;
  WriteTitle(title);
  WriteLines(output_, FormatTable(columns, rows, terminal_));
}

void PlaceSections::WriteCards(const std::string& title, FunctionList functions) {
  std::erase_if(functions, [](const auto* function) { return IsBridgeOrChipset(*function); });
  if (functions.empty()) return;
  std::vector<Row> rows;
  for (const Card& card : CardsOf(functions, machine_.HasDomains())) {
    AddCard(rows, {"", ""}, 0, card);
  }
  WriteTable(
      title,
      {{.heading = "ADDRESS", .colour = Colour::kCyan}, {.heading = "CARD", .isSubject = true}},
      rows);
}

void PlaceSections::WriteShared() {
  for (const SharedPort& shared : machine_.shared) {
    WriteCards(SharedTitle(shared, machine_), machine_.FunctionsOf(shared.functions));
  }
}

void PlaceSections::WriteUnknown() {
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

void PlaceSections::WriteSentences(const std::string& title,
                                   const std::vector<std::string>& sentences) {
  if (sentences.empty()) return;
  WriteTitle(title);
  for (const std::string& sentence : sentences) {
    WriteLines(output_, Wrapped(sentence, terminal_));
  }
}

}  // namespace pciinfo
