// SPDX-License-Identifier: Apache-2.0
#include "host/views/overview.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>
#include <set>

#include "host/console/columns.h"
#include "host/console/text.h"
#include "host/model/pci_class_names.h"
#include "host/model/slot_name.h"
#include "host/model/smbios_names.h"

namespace pciinfo {
namespace {

/// Whether a function is a bridge or part of the chipset; the overview only counts those.
bool IsBridgeOrChipset(const PciFunction& function) {
  constexpr unsigned kBaseClasses[] = {0x05, 0x06, 0x08, 0x11};
  return function.kind == "bridge" ||
         std::any_of(std::begin(kBaseClasses), std::end(kBaseClasses),
                     [&function](unsigned code) { return function.classCode == code; });
}

std::string Joined(const std::vector<std::string>& texts, const char* separator) {
  std::vector<std::string> filled;
  std::copy_if(texts.begin(), texts.end(), std::back_inserter(filled),
               [](const std::string& text) { return !text.empty(); });
  return fmt::format("{}", fmt::join(filled, separator));
}

std::string Count(std::size_t count, const char* one, const char* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

/// Functions with the same text, shown on one line.
struct Group {
  std::string addresses;
  std::string text;
  std::size_t count = 0;
};

std::vector<Group> Grouped(const std::vector<PciFunction>& functions) {
  std::vector<Group> groups;
  std::map<std::string, std::size_t> byText;
  for (const PciFunction& function : functions) {
    std::string text = Printable(function.description);
    if (text.empty()) text = IdText(function);
    const auto [place, isNew] = byText.emplace(text, groups.size());
    if (isNew) groups.push_back({AddressText(function), text, 0});
    ++groups[place->second].count;
  }
  return groups;
}

std::string GroupText(const Group& group) {
  return group.count == 1 ? group.text : fmt::format("{} x {}", group.count, group.text);
}

class OverviewWriter {
 public:
  OverviewWriter(Output& output, const Overview& overview, const Terminal& terminal)
      : output_(output), overview_(overview), terminal_(terminal) {}

  void Write() {
    WriteMachine();
    WriteSlots();
    WriteOthers();
    WriteNotRead();
  }

 private:
  void Title(const std::string& text) {
    output_.Write("\n" + Coloured(text, Colour::kBold, terminal_) + "\n");
  }

  void Fact(const char* name, const std::string& text) {
    if (text.empty()) return;
    const std::string line = FitLine(fmt::format("{:8}  {}", name, text), terminal_);
    const std::size_t length = std::min<std::size_t>(line.find(' '), line.size());
    output_.Write(Coloured(line.substr(0, length), Colour::kBold, terminal_) + line.substr(length) +
                  "\n");
  }

  void WriteMachine() {
    const MachineIdentity& machine = overview_.machine;
    Fact("System", Printable(overview_.systemName));
    Fact("Machine", Joined({machine.maker, machine.product}, " "));
    Fact("Board", Joined({machine.boardMaker, machine.boardProduct, machine.boardVersion}, " "));
    Fact("BIOS",
         Joined({Joined({machine.biosMaker, machine.biosVersion}, " "), machine.biosDate}, ", "));
    Fact("PCI", PciText());
  }

  std::string PciText() const {
    const std::vector<PciFunction>& functions = overview_.functions;
    if (functions.empty()) return "no functions";
    const auto bridges = static_cast<std::size_t>(
        std::count_if(functions.begin(), functions.end(),
                      [](const PciFunction& function) { return function.kind == "bridge"; }));
    std::set<unsigned> buses;
    for (const PciFunction& function : functions) {
      if (function.address) buses.insert(function.address->bus);
    }
    return fmt::format("{} ({}, {}) on {}", Count(functions.size(), "function", "functions"),
                       Count(functions.size() - bridges, "device", "devices"),
                       Count(bridges, "bridge", "bridges"), Count(buses.size(), "bus", "buses"));
  }

  void WriteSlots() {
    const std::vector<Slot>& slots = overview_.slots.slots;
    if (slots.empty()) return;
    const auto filled = std::count_if(slots.begin(), slots.end(),
                                      [](const Slot& slot) { return !slot.functions.empty(); });
    Title(fmt::format("{}, {} with PCI functions", Count(slots.size(), "slot", "slots"), filled));
    std::vector<Row> rows;
    for (const Slot& slot : slots) AddRows(rows, slot);
    WriteLines(output_, FormatTable({{"SLOT", true, Colour::kGreen},
                                     {"TYPE", true},
                                     {"USAGE"},
                                     {"ADDRESS", false, Colour::kCyan},
                                     {"CARD", true}},
                                    rows, terminal_));
  }

  /// Adds the functions of a slot; its bridges only if it has no other functions.
  static void AddRows(std::vector<Row>& rows, const Slot& slot) {
    Row row = {SlotName(slot), slot.type ? ConnectorTypeText(*slot.type) : "-",
               slot.usage ? SlotUsageText(*slot.usage) : "-", "-", ""};
    std::vector<PciFunction> card = slot.functions;
    std::erase_if(card, IsBridgeOrChipset);
    for (const Group& group : Grouped(card.empty() ? slot.functions : card)) {
      row[3] = group.addresses;
      row[4] = GroupText(group);
      rows.push_back(row);
      row = Row(row.size());
    }
    if (slot.functions.empty()) rows.push_back(row);
  }

  std::vector<PciFunction> Others() const {
    std::set<std::string> inSlots;
    for (const Slot& slot : overview_.slots.slots) {
      for (const PciFunction& function : slot.functions) inSlots.insert(function.path);
    }
    std::vector<PciFunction> others = overview_.functions;
    std::erase_if(others, [&inSlots](const PciFunction& function) {
      return inSlots.contains(function.path);
    });
    return others;
  }

  void WriteOthers() {
    std::vector<PciFunction> others = Others();
    if (others.empty()) return;
    // If no slots are known, these functions may be in slots too.
    Title(overview_.slots.slots.empty() ? "Devices" : "On board");
    const auto hidden = std::erase_if(others, IsBridgeOrChipset);
    std::vector<Row> rows;
    for (const Group& group : Grouped(others)) {
      rows.push_back({group.addresses, GroupText(group)});
    }
    if (!rows.empty()) {
      WriteLines(output_, FormatTable({{"ADDRESS", false, Colour::kCyan}, {"DESCRIPTION", true}},
                                      rows, terminal_));
    }
    if (hidden == 0) return;
    const char* form =
        rows.empty() ? "{} (pciinfo devices lists all)" : "plus {} (pciinfo devices lists all)";
    WriteFaint(fmt::format(fmt::runtime(form), Count(hidden, "bridge or chipset function",
                                                     "bridges and chipset functions")));
  }

  void WriteFaint(const std::string& line) {
    output_.Write(Coloured(FitLine(line, terminal_), Colour::kFaint, terminal_) + "\n");
  }

  void WriteNotRead() {
    if (overview_.notRead.empty()) return;
    Title("Not shown");
    for (const std::string& reason : overview_.notRead) {
      output_.Write(Coloured(Printable(reason), Colour::kYellow, terminal_) + "\n");
    }
  }

  Output& output_;
  const Overview& overview_;
  const Terminal& terminal_;
};

std::string SystemNameOf(const vtq::Namespace& repository) {
  for (const char* name : {"QZMSG_SystemBoard", "QZMSG_PCIDevice", "QZMSG_PCIBridge"}) {
    const auto& instances = repository.Find(name)->GetInstances();
    if (instances.empty()) continue;
    const auto value = instances.front()->GetProperty("SystemName", {}).value;
    return value.IsNull() ? "" : value.GetString();
  }
  return "";
}

}  // namespace

Overview MakeOverview(const vtq::Namespace& repository, MachineIdentity machine,
                      std::vector<std::string> notRead) {
  return {std::move(machine), SystemNameOf(repository), ReadSlots(repository),
          ReadFunctions(repository), std::move(notRead)};
}

void WriteOverview(Output& output, const Overview& overview, const Terminal& terminal) {
  OverviewWriter(output, overview, terminal).Write();
}

}  // namespace pciinfo
