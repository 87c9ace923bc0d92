// SPDX-License-Identifier: Apache-2.0
#include "host/report/machine_part.h"

#include <fmt/format.h>

#include "host/report/layout.h"
#include "host/report/page_doubts.h"
#include "host/report/page_findings.h"
#include "host/report/page_frame.h"
#include "host/report/page_tables.h"
#include "host/report/parts.h"
#include "host/report/svg_writer.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

/// Machines with more parts show equal neighbours as one.
constexpr std::size_t kMostParts = 150;

/// Longer tables are closed until the reader opens them.
constexpr std::size_t kMostOpenRows = 300;

constexpr double kColumnGap = 16;

/// Two columns stand side by side where panels are not wider than this.
constexpr double kNarrowPanel = 560;

std::vector<PartGroup> PartsToDraw(const MachineModel& machine) {
  std::vector<PartGroup> parts = PartsOf(MakePortTree(machine), machine);
  parts.push_back(SlotsWithoutPort(machine));
  if (CountParts(parts) > kMostParts) FoldParts(parts);
  return parts;
}

void WritePanels(Markup& markup, const std::vector<Panel>& panels, const std::string& prefix) {
  const bool isNarrow = !panels.empty() && panels.front().width <= kNarrowPanel;
  markup.Open("div", {{"class", isNarrow ? "drawing" : "drawing wide"}});
  for (const auto& column : InColumns(panels, isNarrow ? 2 : 1, kColumnGap)) {
    markup.Open("div", {{"class", "column"}});
    for (const std::size_t place : column) {
      WritePanel(markup, panels[place], prefix, {});
    }
    markup.CloseLine();
  }
  markup.CloseLine();
}

/// An example of a line or box, and what it means.
void WriteKey(Markup& markup, const char* sample, const char* meaning) {
  markup.Open("li");
  markup.Fixed(R"(<svg class="panel key" width="34" height="16" aria-hidden="true">)");
  markup.Fixed(sample);
  markup.Fixed("</svg>");
  markup.Text(meaning);
  markup.Close();
}

void WriteLegend(Markup& markup) {
  markup.Open("ul", {{"class", "legend"}, {"aria-label", "Legend"}});
  WriteKey(markup, R"(<path class="link" d="M0 8L34 8" stroke-width="7"/>)",
           "link: the more lanes, the wider");
  WriteKey(markup,
           R"(<path class="possible" d="M0 8L34 8" stroke-width="12"/>)"
           R"(<path class="narrow" d="M0 8L34 8" stroke-width="6"/>)",
           "narrow: uses fewer lanes than both ends allow");
  WriteKey(markup, R"(<rect class="slot-box" x="1" y="1" width="32" height="14" rx="3"/>)", "slot");
  WriteKey(markup, R"(<rect class="empty-box" x="1" y="1" width="32" height="14" rx="3"/>)",
           "empty slot");
  WriteKey(markup, R"(<rect class="unknown-box" x="1" y="1" width="32" height="14" rx="3"/>)",
           "slot of which little is known");
  WriteKey(markup, R"(<rect class="doubtful-box" x="1" y="1" width="32" height="14" rx="3"/>)",
           "not certain which slot, or in doubt");
  WriteKey(markup, R"(<rect class="device-box" x="1" y="1" width="32" height="14" rx="3"/>)",
           "part of the board");
  markup.CloseLine();
}

void WriteDrawing(Markup& markup, const MachineModel& machine, const std::string& prefix) {
  markup.Open("section", {{"aria-label", "Drawing"}, {"class", "board"}, {"data-prefix", prefix}});
  markup.Open("div");
  WritePanels(markup, LayOut(PartsToDraw(machine)), prefix);
  WriteLegend(markup);
  markup.CloseLine();
  markup.Open("aside", {{"class", "details"}, {"aria-label", "Details"}, {"hidden", "hidden"}});
  markup.CloseLine();
  markup.CloseLine();
}

void WriteSlots(Markup& markup, const MachineModel& machine, const std::string& prefix) {
  BeginSection(markup, prefix + "slots", "Slots");
  if (machine.slots.empty()) {
    markup.Element("p", {}, "No slots are known.");
  } else {
    WriteSlotTable(markup, machine, prefix);
  }
  markup.CloseLine();
}

void WriteFunctions(Markup& markup, const MachineModel& machine, const std::string& prefix) {
  const std::size_t count = machine.functions.size();
  BeginSection(markup, prefix + "functions", "Functions");
  markup.Open("details", {{"open", count <= kMostOpenRows ? "open" : ""}});
  markup.Element("summary", {}, Count(count, "PCI function", "PCI functions"));
  WriteFunctionTable(markup, machine, prefix);
  markup.CloseLine();
  markup.CloseLine();
}

}  // namespace

std::string TitleOf(const Overview& overview, std::string origin) {
  for (const char* name : {"System", "Machine", "Board"}) {
    for (const auto& [fact, text] : OverviewFacts(overview)) {
      if (fact == name) return text;
    }
  }
  if (origin.starts_with('t')) origin.front() = 'T';  // "the capture ...", "this machine"
  return origin;
}

void WriteFactList(Markup& markup, const Overview& overview) {
  markup.Open("dl", {{"class", "facts"}});
  for (const auto& [name, text] : OverviewFacts(overview)) {
    if (name == "System") continue;  // it is the title of the page
    markup.Open("div");
    markup.Element("dt", {}, name);
    markup.Element("dd", {}, text);
    markup.Close();
  }
  markup.CloseLine();
}

void WriteMachine(Markup& markup, const ReportedMachine& machine, const std::string& prefix) {
  const Overview& overview = machine.overview;
  WriteDrawing(markup, overview.machine, prefix);
  BeginSection(markup, prefix + "findings", "Findings");
  WriteFindings(markup, machine.findings);
  markup.CloseLine();
  BeginSection(markup, prefix + "doubts", "In doubt");
  WriteDoubts(markup, overview);
  markup.CloseLine();
  WriteSlots(markup, overview.machine, prefix);
  WriteFunctions(markup, overview.machine, prefix);
}

}  // namespace pciinfo
