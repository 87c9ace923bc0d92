// SPDX-License-Identifier: Apache-2.0
#include "host/views/show_view.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <nlohmann/json.hpp>

#include "host/console/columns.h"
#include "host/console/safe_json.h"
#include "host/console/text.h"
#include "host/formats/json_writer.h"
#include "host/formats/table_writer.h"
#include "host/machine/link_text.h"
#include "host/machine/names.h"
#include "host/model/smbios_names.h"
#include "host/record/machine_json.h"
#include "host/views/place_sections.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

/// Names and texts; facts with an empty text are not shown.
using Facts = std::vector<std::pair<std::string, std::string>>;

std::string InHex(const std::optional<unsigned>& number, int digits) {
  return number ? fmt::format("{:0{}x}", *number, digits) : "";
}

std::string InWords(const std::optional<unsigned>& code, std::string (*words)(unsigned)) {
  return code ? words(*code) : "";
}

std::string NumberText(const std::optional<unsigned>& number) {
  return number ? std::to_string(*number) : "";
}

std::string YesOrNo(const std::optional<bool>& value) {
  if (!value) return "";
  return *value ? "yes" : "no";
}

std::string NodeText(const std::optional<int>& node) {
  return node.value_or(-1) < 0 ? "" : std::to_string(*node);
}

std::string WithId(const std::string& name, const std::string& id) {
  return name.empty() ? id : fmt::format("{} ({})", name, id);
}

std::string SizeText(std::uint64_t bytes) {
  constexpr const char* kUnits[] = {"bytes", "KiB", "MiB", "GiB", "TiB"};
  std::size_t unit = 0;
  while (unit + 1 < std::size(kUnits) && bytes >= 1024 && bytes % 1024 == 0) {
    bytes /= 1024;
    ++unit;
  }
  return fmt::format("{} {}", bytes, kUnits[unit]);
}

std::string RegionText(const Region& region) {
  std::string text =
      fmt::format("{} at {:x}, {}", Printable(region.kind), region.start, SizeText(region.size));
  if (region.isWide) text += ", 64 bits";
  if (region.isPrefetchable) text += ", prefetchable";
  return text;
}

std::string ClassFact(const MachineFunction& function) {
  if (!function.baseClass) return "";
  return fmt::format("{} ({})", ClassName(function),
                     InHex(function.baseClass, 2) + InHex(function.subclass, 2) +
                         InHex(function.programmingInterface, 2));
}

std::string SubsystemFact(const MachineFunction& function) {
  if (!function.subsystemVendorId || !function.subsystemId) return "";
  const std::string name =
      MakerAndProduct(ShortMaker(function.subsystemVendorName), NameIn(function.subsystemName));
  return WithId(name,
                fmt::format("{:04x}:{:04x}", *function.subsystemVendorId, *function.subsystemId));
}

std::string OptionalAddress(const std::optional<DomainAddress>& address) {
  return address ? FormatAddress(*address) : "";
}

std::string PlaceFact(const MachineFunction& function, const MachineModel& machine) {
  const std::string place = PlaceText(function, machine);
  return function.certainty == "likely" ? place + " (likely)" : place;
}

std::string BecauseFact(const MachineFunction& function) {
  return Printable(function.evidence.empty() ? function.placeReason : function.evidence);
}

/// The slots to which a port leads.
std::string LeadsToFact(const MachineFunction& function, const MachineModel& machine) {
  std::vector<std::string> names;
  for (const MachineSlot& slot : machine.slots) {
    for (const std::string& port : slot.ports) {
      if (port == FormatAddress(function.address)) names.push_back(NameOf(slot, machine));
    }
  }
  return fmt::format("{}", fmt::join(names, " or "));
}

Facts FunctionFacts(const Shown& shown) {
  const MachineFunction& function = *shown.function;
  Facts facts = {{"Address", FormatAddress(function.address)},
                 {"Class", ClassFact(function)},
                 {"Device", WithId(NameIn(function.deviceName), IdText(function))},
                 {"Vendor", NameIn(function.vendorName)},
                 {"Subsystem", SubsystemFact(function)},
                 {"Revision", InHex(function.revision, 2)},
                 {"Place", PlaceFact(function, shown.machine)},
                 {"because", BecauseFact(function)},
                 {"Port", OptionalAddress(function.parentPort)},
                 {"Leads to", LeadsToFact(function, shown.machine)},
                 {"Port type", Printable(function.portType)},
                 {"Link", LinkText(function.link)},
                 {"Driver", Printable(function.driver)},
                 {"NUMA node", NodeText(function.numaNode)},
                 {"Virtual of", OptionalAddress(function.physicalFunction)}};
  if (function.buses) {
    facts.emplace_back("Buses", fmt::format("{:02x} to {:02x}", function.buses->secondary,
                                            function.buses->subordinate));
  }
  for (const Region& region : shown.details.regions) {
    facts.emplace_back(fmt::format("Region {}", region.number), RegionText(region));
  }
  return facts;
}

std::string PortsFact(const MachineSlot& slot) {
  if (!slot.ports.empty()) return Printable(fmt::format("{}", fmt::join(slot.ports, ", ")));
  return slot.noPortBecause.empty() ? "" : "unknown: " + Printable(slot.noPortBecause);
}

std::string LinkFact(const MachineSlot& slot) {
  return slot.state == SlotState::kEmpty ? MostLinkText(slot.link) : LinkText(slot.link);
}

/// The evidence of a slot is that of the functions in it.
std::string SlotBecause(const MachineSlot& slot, const MachineModel& machine) {
  if (slot.functions.empty()) return "";
  const MachineFunction& first = machine.functions[slot.functions.front()];
  return fmt::format("{} ({})", Printable(first.evidence), Printable(first.certainty));
}

Facts SlotFacts(const MachineSlot& slot, const MachineModel& machine) {
  Facts facts = {{"Known from", Printable(slot.source)},
                 {"State", StateText(slot)},
                 {"Firmware", InWords(slot.usage, SlotUsageText)},
                 {"because", SlotBecause(slot, machine)},
                 {"Type", InWords(slot.type, ConnectorTypeText)},
                 {"Width", InWords(slot.width, SlotWidthText)},
                 {"Length", InWords(slot.length, SlotLengthText)},
                 {"Slot ID", NumberText(slot.id)},
                 {"Address", Printable(slot.firmwareAddress)},
                 {"Port", PortsFact(slot)},
                 {"Link", LinkFact(slot)},
                 {"Kernel slot", Printable(slot.kernelSlot)},
                 {"Port's slot", NumberText(slot.physicalNumber)},
                 {"Hot-plug", YesOrNo(slot.portHotPlug ? slot.portHotPlug : slot.hotPlug)},
                 {"NUMA node", NodeText(slot.numaNode)},
                 {"Inside", Printable(slot.outerSlot)}};
  for (const std::string& conflict : slot.conflicts) {
    facts.emplace_back("Doubt", Printable(conflict));
  }
  return facts;
}

void WriteShownFacts(Output& output, const Facts& facts, const Terminal& terminal) {
  constexpr std::size_t kLabel = 15;
  Terminal beside = terminal;
  if (terminal.width) beside.width = *terminal.width - kLabel;
  for (const auto& [name, words] : facts) {
    if (words.empty()) continue;
    std::string label = "  " + Coloured(PadRight(name, kLabel - 4), Colour::kBold, terminal) + "  ";
    for (const std::string& line : Wrapped(words, beside)) {
      output.Write(label + line + "\n");
      label.assign(kLabel, ' ');
    }
  }
}

void WriteShownTitle(Output& output, const std::string& title, const Terminal& terminal) {
  output.Write(Coloured(title, Colour::kBold, terminal) + "\n");
}

void WriteShownFunction(Output& output, const Shown& shown, const Terminal& terminal) {
  WriteShownTitle(output, ModelText(*shown.function), terminal);
  WriteShownFacts(output, FunctionFacts(shown), terminal);
  if (shown.details.instance == nullptr) return;
  WriteShownTitle(output, "\n" + shown.details.cimClass->GetSchema().name, terminal);
  TableWriter(output).Write(*shown.details.cimClass, *shown.details.instance);
}

void WriteShownSlot(Output& output, const Shown& shown, const Terminal& terminal) {
  const MachineSlot& slot = *shown.slot;
  WriteShownTitle(output, "Slot " + NameOf(slot, shown.machine), terminal);
  WriteShownFacts(output, SlotFacts(slot, shown.machine), terminal);
  const std::string instead = InsteadOfCards(slot, shown.machine);
  if (slot.functions.empty()) {
    if (!instead.empty()) WriteShownFacts(output, {{"Card", instead}}, terminal);
    return;
  }
  output.Write("\n");
  std::vector<Row> rows;
  for (const Card& card :
       CardsOf(shown.machine.FunctionsOf(slot.functions), shown.machine.HasDomains())) {
    AddCard(rows, {"", ""}, 0, card);
  }
  PlaceSections(output, shown.machine, terminal)
      .WriteTable(
          "In this slot",
          {{.heading = "ADDRESS", .colour = Colour::kCyan}, {.heading = "CARD", .isSubject = true}},
          rows);
}

void WriteInstanceJson(Output& output, const vtq::Class& cimClass, const vtq::Instance& instance) {
  JsonObjects objects(output);
  objects.BeginClass(cimClass);
  objects.Write(cimClass, instance);
}

}  // namespace

void WriteShown(Output& output, const Shown& shown, const Terminal& terminal) {
  if (shown.function != nullptr) return WriteShownFunction(output, shown, terminal);
  if (shown.slot != nullptr) return WriteShownSlot(output, shown, terminal);
  const vtq::ClassSchema& schema = shown.cimClass->GetSchema();
  WriteShownTitle(output, schema.description, terminal);
  WriteShownTitle(output, "\n" + schema.name, terminal);
  output.Write("  " + Printable(shown.instance->GetPath()) + "\n");
  TableWriter(output).Write(*shown.cimClass, *shown.instance);
}

void WriteShownJson(Output& output, const Shown& shown) {
  if (shown.slot != nullptr) {
    return WriteJsonLines(output, {{"slot", SlotJson(*shown.slot, shown.machine)}});
  }
  output.Write("{");
  if (shown.function != nullptr) {
    output.Write("\"function\":" + SafeJson(FunctionJson(*shown.function, shown.machine).dump()));
    if (shown.details.instance != nullptr) {
      output.Write(",\n\"details\":");
      WriteInstanceJson(output, *shown.details.cimClass, *shown.details.instance);
    }
  } else {
    output.Write("\"instance\":");
    WriteInstanceJson(output, *shown.cimClass, *shown.instance);
  }
  output.Write("}\n");
}

}  // namespace pciinfo
