// SPDX-License-Identifier: Apache-2.0
#include "host/views/overview.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/console/columns.h"
#include "host/console/text.h"
#include "host/machine/cards.h"
#include "host/machine/link_text.h"
#include "host/machine/names.h"
#include "host/record/machine_json.h"
#include "host/views/place_sections.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

const std::vector<Column> kOverviewColumns = {{"SLOT", true, Colour::kGreen},
                                              {"STATE"},
                                              {.heading = "ADDRESS", .colour = Colour::kCyan},
                                              {.heading = "CARD", .isSubject = true}};

std::string WithComma(const std::string& text, const std::string& more) {
  return text.empty() || more.empty() ? text + more : text + ", " + more;
}

std::string PciText(const MachineCounts& counts) {
  if (counts.functions == 0) return "no functions";
  return fmt::format("{}, {} of them bridges", Count(counts.functions, "function", "functions"),
                     counts.bridges);
}

std::string SlotsText(const MachineCounts& counts) {
  if (counts.slots == 0) return "none known";
  return fmt::format("{}: {} in use, {} matched to a card", Count(counts.slots, "slot", "slots"),
                     counts.inUse, counts.matched);
}

void WriteFact(Output& output, const std::string& name, const std::string& text,
               const Terminal& terminal) {
  const std::string line = FitLine(fmt::format("{:8}  {}", name, text), terminal);
  const std::size_t length = std::min(line.find(' '), line.size());
  output.Write(Coloured(line.substr(0, length), Colour::kBold, terminal) + line.substr(length) +
               "\n");
}

std::string MakerText(const std::string& maker, const std::string& product) {
  return MakerAndProduct(ShortMaker(maker), NameIn(product));
}

void AddOverviewRows(std::vector<Row>& rows, const MachineSlot& slot, const MachineModel& machine) {
  Row row = {NameOf(slot, machine), StateText(slot), "", ""};
  const auto cards = CardsOf(machine.FunctionsOf(slot.functions), machine.HasDomains());
  if (cards.empty()) {
    row.back() = InsteadOfCards(slot, machine);
    rows.push_back(row);
  }
  for (const Card& card : cards) {
    AddCard(rows, row, 2, card);
    row = Row(row.size());
  }
}

void WriteSlotSection(PlaceSections& sections, const MachineModel& machine) {
  std::vector<Row> rows;
  for (const MachineSlot& slot : machine.slots) {
    if (slot.IsNamed()) AddOverviewRows(rows, slot, machine);
  }
  sections.WriteTable("Slots", kOverviewColumns, rows);
}

/// A line for each thing that needs a look, with the command that tells more.
std::vector<std::string> Doubts(const MachineModel& machine) {
  std::vector<std::string> doubts = Contradictions(machine);
  const auto unmatched = static_cast<std::size_t>(std::count_if(
      machine.slots.begin(), machine.slots.end(),
      [](const MachineSlot& slot) { return slot.ports.empty() && !slot.noPortBecause.empty(); }));
  if (unmatched != 0) {
    doubts.push_back(fmt::format("{} nowhere (\"pciinfo slots\" says why)",
                                 Count(unmatched, "slot leads", "slots lead")));
  }
  const auto narrow =
      static_cast<std::size_t>(std::count_if(machine.functions.begin(), machine.functions.end(),
                                             [&machine](const MachineFunction& function) {
                                               return !NarrowLinkText(function, machine).empty();
                                             }));
  if (narrow != 0) {
    doubts.push_back(fmt::format("{} than both ends allow (\"pciinfo tree\" marks {})",
                                 Count(narrow, "link is narrower", "links are narrower"),
                                 narrow == 1 ? "it" : "them"));
  }
  return doubts;
}

std::vector<std::string> Uncounted(const MachineModel& machine) {
  const auto count = static_cast<std::size_t>(std::count_if(
      machine.functions.begin(), machine.functions.end(), [](const MachineFunction& function) {
        return !function.slot && IsBridgeOrChipset(function);
      }));
  if (count == 0) return {};
  return {fmt::format(
      "{} not listed here (\"pciinfo devices\" lists all)",
      Count(count, "bridge or chipset function is", "bridges and chipset functions are"))};
}

}  // namespace

std::vector<std::pair<std::string, std::string>> OverviewFacts(const Overview& overview) {
  const MachineIdentity& identity = overview.identity;
  const MachineCounts counts = CountAll(overview.machine);
  const std::string board = MakerText(identity.boardMaker, identity.boardProduct);
  const std::string version = NameIn(identity.boardVersion);
  std::vector<std::pair<std::string, std::string>> facts = {
      {"System", Printable(overview.systemName)},
      {"Machine", MakerText(identity.maker, identity.product)},
      {"Board", board.empty() || version.empty() ? board : board + " " + version},
      {"BIOS",
       WithComma(MakerText(identity.biosMaker, identity.biosVersion), NameIn(identity.biosDate))},
      {"Filter", Printable(overview.filter)},
      {"PCI", PciText(counts)},
      {"Slots", SlotsText(counts)}};
  std::erase_if(facts, [](const auto& fact) { return fact.second.empty(); });
  return facts;
}

void WriteOverview(Output& output, const Overview& overview, const Terminal& terminal) {
  const MachineModel& machine = overview.machine;
  for (const auto& [name, text] : OverviewFacts(overview)) WriteFact(output, name, text, terminal);
  output.Write("\n");
  PlaceSections sections(output, machine, terminal);
  WriteSlotSection(sections, machine);
  sections.WriteShared();
  sections.WriteCards("In slots that the firmware does not name",
                      machine.FunctionsAt(FunctionPlace::kUnnamedSlot));
  sections.WriteCards("On board", machine.FunctionsAt(FunctionPlace::kOnBoard));
  sections.WriteUnknown();
  sections.WriteSentences("", Uncounted(machine));
  sections.WriteSentences("Doubts", Doubts(machine));
  std::vector<std::string> notRead;
  for (const std::string& line : overview.notRead) notRead.push_back(Printable(line));
  sections.WriteSentences("Not shown", notRead);
}

void WriteOverviewJson(Output& output, const Overview& overview) {
  WriteJsonLines(output, OverviewJson(overview));
}

}  // namespace pciinfo
