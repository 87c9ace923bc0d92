// SPDX-License-Identifier: Apache-2.0
#include "host/report/machines_page.h"

#include <fmt/format.h>

#include "host/report/machine_part.h"
#include "host/report/markup.h"
#include "host/report/page_differences.h"
#include "host/report/page_frame.h"

namespace pciinfo {
namespace {

constexpr char kBetween = '\f';

/// More machines are closed until the reader opens them.
constexpr std::size_t kMostOpenMachines = 2;

std::string FactOf(const Overview& overview, const char* name) {
  for (const auto& [fact, text] : OverviewFacts(overview)) {
    if (fact == name) return text;
  }
  return "";
}

void WriteIndexRow(Markup& markup, const Overview& overview, const std::string& origin,
                   const std::string& anchor) {
  markup.Begin("tr", {});
  markup.Open("th", {{"scope", "row"}});
  markup.Element("a", {{"href", "#" + anchor}}, TitleOf(overview, origin));
  markup.Close();
  for (const char* name : {"Machine", "PCI", "Slots"}) {
    markup.Element("td", {}, FactOf(overview, name));
  }
  markup.Element("td", {}, origin);
}

void WriteIndex(Markup& markup, const std::vector<MachineOnPage>& machines) {
  BeginSection(markup, "machines", "Machines");
  markup.Open(
      "div",
      {{"class", "scroll"}, {"tabindex", "0"}, {"role", "region"}, {"aria-label", "Machines"}});
  markup.Open("table");
  markup.Fixed("<thead><tr>");
  for (const char* heading : {"Name", "Machine", "PCI", "Slots", "From"}) {
    markup.Element("th", {{"scope", "col"}}, heading);
  }
  markup.Fixed("</tr></thead>\n<tbody>\n");
  for (const MachineOnPage& machine : machines) {
    if (machine.part) {
      markup.Fixed(machine.part->substr(0, machine.part->find(kBetween)));
    } else {
      markup.Fixed("<tr><th scope=\"row\">could not be read</th><td><td><td>");
      markup.Element("td", {}, machine.origin);
    }
    markup.Fixed("\n");
  }
  markup.Fixed("</tbody>");
  markup.Close();
  markup.CloseLine();
  markup.CloseLine();
}

}  // namespace

void WriteMachinePart(Output& output, const ReportedMachine& machine, const std::string& origin,
                      std::size_t place) {
  const Overview& overview = machine.overview;
  const std::string prefix = fmt::format("m{}-", place);
  Markup markup(output);
  WriteIndexRow(markup, overview, origin, prefix + "machine");
  markup.Fixed(std::string(1, kBetween));
  markup.Open("summary", {{"id", prefix + "machine"}});
  markup.Element("h2", {}, TitleOf(overview, origin));
  markup.Element("span", {{"class", "origin"}}, "from " + origin);
  markup.CloseLine();
  WriteFactList(markup, overview);
  WriteMachine(markup, machine, prefix);
}

void WriteMachinesPage(Output& output, const std::vector<MachineOnPage>& machines,
                       const std::optional<std::string>& differences) {
  Markup markup(output);
  BeginPage(markup, fmt::format("{} machines", machines.size()));
  WriteSearch(markup);
  BeginMain(markup);
  WriteIndex(markup, machines);
  if (differences) WriteDifferences(markup, *differences);
  const bool isOpen = machines.size() <= kMostOpenMachines;
  for (const MachineOnPage& machine : machines) {
    if (!machine.part) continue;
    markup.Open("details", {{"class", "machine"}, {"open", isOpen ? "open" : ""}});
    markup.Fixed(machine.part->substr(machine.part->find(kBetween) + 1));
    markup.CloseLine();
  }
  EndPage(markup, fmt::format("{} captures", machines.size()));
}

}  // namespace pciinfo
