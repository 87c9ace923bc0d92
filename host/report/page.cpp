// SPDX-License-Identifier: Apache-2.0
#include "host/report/page.h"

#include <fmt/format.h>

#include "host/report/assets.h"
#include "host/report/layout.h"
#include "host/report/markup.h"
#include "host/report/page_doubts.h"
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

std::string Policy() {
  return fmt::format(
      "default-src 'none'; style-src '{}' '{}'; script-src '{}'; base-uri 'none'; "
      "form-action 'none'",
      kPageStyle.hash, kDrawingStyle.hash, kPageScript.hash);
}

void WriteAsset(Markup& markup, const char* element, const Asset& asset) {
  markup.Open(element);
  markup.Fixed(asset.text);
  markup.CloseLine();
}

void WriteHead(Markup& markup, const std::string& title) {
  markup.Fixed("<!DOCTYPE html>\n");
  markup.Open("html", {{"lang", "en"}});
  markup.Open("head");
  markup.Begin("meta", {{"charset", "utf-8"}});
  markup.Begin("meta", {{"http-equiv", "Content-Security-Policy"}, {"content", Policy()}});
  markup.Begin("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}});
  markup.Begin("meta", {{"name", "referrer"}, {"content", "no-referrer"}});
  markup.Element("title", {}, title);
  WriteAsset(markup, "style", kPageStyle);
  WriteAsset(markup, "style", kDrawingStyle);
  markup.CloseLine();
}

/// The name of the system, else what the firmware says of the machine or of its board.
std::string TitleOf(const Overview& overview) {
  for (const char* name : {"System", "Machine", "Board"}) {
    for (const auto& [fact, text] : OverviewFacts(overview)) {
      if (fact == name) return text;
    }
  }
  return "A machine without a name";
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

/// The script shows it.
void WriteSearch(Markup& markup) {
  markup.Open("div", {{"class", "find"}, {"id", "find"}, {"role", "search"}, {"hidden", "hidden"}});
  markup.Element("label", {{"for", "search"}}, "Find");
  markup.Begin("input", {{"type", "search"},
                         {"id", "search"},
                         {"autocomplete", "off"},
                         {"spellcheck", "false"},
                         {"placeholder", "card, slot, address or driver"}});
  markup.Element("output", {{"id", "found"}, {"for", "search"}}, "");
  markup.CloseLine();
}

std::vector<PartGroup> PartsToDraw(const MachineModel& machine) {
  std::vector<PartGroup> parts = PartsOf(MakePortTree(machine), machine);
  parts.push_back(SlotsWithoutPort(machine));
  if (CountParts(parts) > kMostParts) FoldParts(parts);
  return parts;
}

void WritePanels(Markup& markup, const std::vector<Panel>& panels) {
  const bool isNarrow = !panels.empty() && panels.front().width <= kNarrowPanel;
  markup.Open("div", {{"class", isNarrow ? "drawing" : "drawing wide"}});
  for (const auto& column : InColumns(panels, isNarrow ? 2 : 1, kColumnGap)) {
    markup.Open("div", {{"class", "column"}});
    for (const std::size_t place : column) {
      WritePanel(markup, panels[place], ItemUse::kLink, {});
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
  WriteKey(markup, R"(<rect class="unnamed-box" x="1" y="1" width="32" height="14" rx="3"/>)",
           "slot that nothing names");
  WriteKey(markup, R"(<rect class="doubtful-box" x="1" y="1" width="32" height="14" rx="3"/>)",
           "not certain which slot, or in doubt");
  WriteKey(markup, R"(<rect class="device-box" x="1" y="1" width="32" height="14" rx="3"/>)",
           "part of the board");
  markup.CloseLine();
}

void WriteDrawing(Markup& markup, const MachineModel& machine) {
  markup.Open("section", {{"aria-label", "Drawing"}, {"class", "board"}});
  markup.Open("div");
  WritePanels(markup, LayOut(PartsToDraw(machine)));
  WriteLegend(markup);
  markup.CloseLine();
  markup.Open("aside", {{"id", "details"}, {"aria-label", "Details"}, {"hidden", "hidden"}});
  markup.CloseLine();
  markup.CloseLine();
}

void WriteSection(Markup& markup, const char* id, const char* title) {
  markup.Open("section", {{"id", id}, {"aria-labelledby", fmt::format("{}-title", id)}});
  markup.Element("h2", {{"id", fmt::format("{}-title", id)}}, title);
}

void WriteSlots(Markup& markup, const MachineModel& machine) {
  WriteSection(markup, "slots", "Slots");
  if (machine.slots.empty()) {
    markup.Element("p", {}, "No slots are known.");
  } else {
    WriteSlotTable(markup, machine);
  }
  markup.CloseLine();
}

void WriteFunctions(Markup& markup, const MachineModel& machine) {
  const std::size_t count = machine.functions.size();
  WriteSection(markup, "functions", "Functions");
  markup.Open("details", {{"open", count <= kMostOpenRows ? "open" : ""}});
  markup.Element("summary", {}, Count(count, "PCI function", "PCI functions"));
  WriteFunctionTable(markup, machine);
  markup.CloseLine();
  markup.CloseLine();
}

}  // namespace

void WritePage(Output& output, const Overview& overview, const std::string& origin) {
  Markup markup(output);
  const std::string title = TitleOf(overview);
  WriteHead(markup, "PCI cards and slots: " + title);
  markup.Open("body");
  markup.Open("header");
  markup.Element("h1", {}, title);
  WriteFactList(markup, overview);
  WriteSearch(markup);
  markup.CloseLine();
  markup.Open("main");
  WriteDrawing(markup, overview.machine);
  WriteSection(markup, "doubts", "In doubt");
  WriteDoubts(markup, overview);
  markup.CloseLine();
  WriteSlots(markup, overview.machine);
  WriteFunctions(markup, overview.machine);
  markup.CloseLine();
  markup.Element("footer", {}, fmt::format("Made by pciinfo {} from {}.", PCIINFO_VERSION, origin));
  WriteAsset(markup, "script", kPageScript);
  markup.Close();
  markup.CloseLine();
}

}  // namespace pciinfo
