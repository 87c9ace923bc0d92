// SPDX-License-Identifier: Apache-2.0
#include "host/report/page_tables.h"

#include <fmt/format.h>

#include <set>
#include <string>
#include <vector>

#include "host/console/text.h"
#include "host/machine/cards.h"
#include "host/machine/link_text.h"
#include "host/machine/names.h"
#include "host/model/smbios_names.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

using Cells = std::vector<std::string>;

/// Begins a table that scrolls alone where it is wider than the page.
void BeginTable(Markup& markup, const char* caption, const Cells& headings) {
  markup.Open(
      "div", {{"class", "scroll"}, {"tabindex", "0"}, {"role", "region"}, {"aria-label", caption}});
  markup.Open("table");
  markup.Open("thead");
  markup.Open("tr");
  for (const std::string& heading : headings) {
    markup.Element("th", {{"scope", "col"}}, heading);
  }
  markup.Close();
  markup.CloseLine();
  markup.Open("tbody");
  markup.Fixed("\n");
}

void EndTable(Markup& markup) {
  markup.Close();
  markup.Close();
  markup.CloseLine();
}

/// The first cell is the heading of the row. HTML ends cells and rows by itself.
void WriteRow(Markup& markup, const std::string& id, const Cells& cells) {
  markup.Begin("tr", {{"id", id}});
  for (std::size_t i = 0; i < cells.size(); ++i) {
    markup.Fixed(i == 0 ? "<th scope=\"row\">" : "<td>");
    markup.Text(cells[i]);
    if (i == 0) markup.Fixed("</th>");
  }
  markup.Fixed("\n");
}

std::string AddWithSemicolon(const std::string& text, const std::string& more) {
  return text.empty() || more.empty() ? text + more : text + "; " + more;
}

std::string CardsText(const MachineSlot& slot, const MachineModel& machine) {
  std::string text;
  for (const Card& card : CardsOf(machine.FunctionsOf(slot.functions), machine.HasDomains())) {
    text = AddWithSemicolon(text, fmt::format("{} at {}", card.text, card.addresses.front()));
  }
  return text.empty() ? InsteadOfCards(slot, machine) : text;
}

std::string SlotLink(const MachineSlot& slot) {
  if (slot.state == SlotState::kUnknown) return "";
  return slot.state == SlotState::kEmpty ? MostLinkText(slot.link) : LinkText(slot.link);
}

std::string SlotForm(const MachineSlot& slot) {
  constexpr unsigned kNoType = 2;  // "unknown", and below it "other"
  return slot.type.value_or(kNoType) > kNoType ? ConnectorTypeText(*slot.type) : "";
}

std::string SlotPorts(const MachineSlot& slot, const MachineModel& machine) {
  std::string text;
  for (const std::string& port : slot.ports) {
    text += (text.empty() ? "" : ", ") + ShortAddress(port, machine);
  }
  return text;
}

/// How it is known what sits in a slot, or why it is not known.
std::string SlotEvidence(const MachineSlot& slot, const MachineModel& machine) {
  std::string text;
  if (!slot.functions.empty()) {
    const MachineFunction& first = machine.functions[slot.functions.front()];
    text = Printable(first.evidence);
    if (!first.certainty.empty()) text += fmt::format(" ({})", Printable(first.certainty));
  }
  if (slot.ports.empty()) text = AddWithSemicolon(text, Printable(slot.noPortBecause));
  for (const std::string& conflict : slot.conflicts) {
    text = AddWithSemicolon(text, "in doubt: " + Printable(conflict));
  }
  return text;
}

std::string NodeCell(const MachineFunction& function) {
  const int node = function.numaNode.value_or(-1);
  return node < 0 ? "" : std::to_string(node);
}

std::string LinkWithDoubt(const MachineFunction& function, const MachineModel& machine) {
  const std::string narrow = NarrowLinkText(function, machine);
  return LinkText(function.link) + (narrow.empty() ? "" : " (narrow)");
}

}  // namespace

void WriteSlotTable(Markup& markup, const MachineModel& machine, const std::string& prefix) {
  BeginTable(markup, "Slots",
             {"Slot", "State", "Card", "Link", "Form", "Port", "Known from", "Because"});
  for (std::size_t i = 0; i < machine.slots.size(); ++i) {
    const MachineSlot& slot = machine.slots[i];
    WriteRow(markup, fmt::format("{}s{}", prefix, i),
             {NameOf(slot, machine), StateText(slot), CardsText(slot, machine), SlotLink(slot),
              SlotForm(slot), SlotPorts(slot, machine), Printable(slot.source),
              SlotEvidence(slot, machine)});
  }
  EndTable(markup);
}

void WriteFunctionTable(Markup& markup, const MachineModel& machine, const std::string& prefix) {
  BeginTable(markup, "Functions",
             {"Address", "Name", "Class", "ID", "Driver", "Link", "Place", "NUMA node"});
  for (std::size_t i = 0; i < machine.functions.size(); ++i) {
    const MachineFunction& function = machine.functions[i];
    WriteRow(markup, fmt::format("{}f{}", prefix, i),
             {AddressText(function.address, machine.HasDomains()), MakerAndModel(function),
              ClassName(function), IdText(function), Printable(function.driver),
              LinkWithDoubt(function, machine), PlaceText(function, machine), NodeCell(function)});
  }
  EndTable(markup);
}

}  // namespace pciinfo
