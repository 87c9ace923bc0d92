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
#include "host/formats/value_text.h"
#include "host/model/pci_class_names.h"
#include "host/model/slot_name.h"
#include "host/model/smbios_names.h"
#include "host/views/function_json.h"
#include "host/views/slot_json.h"

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

std::string YesOrNo(const std::optional<bool>& value) {
  if (!value) return "";
  return *value ? "yes" : "no";
}

std::string SizeText(unsigned long bytes) {
  constexpr const char* kUnits[] = {"bytes", "KiB", "MiB", "GiB"};
  std::size_t unit = 0;
  while (unit + 1 < std::size(kUnits) && bytes >= 1024 && bytes % 1024 == 0) {
    bytes /= 1024;
    ++unit;
  }
  return fmt::format("{} {}", bytes, kUnits[unit]);
}

std::vector<unsigned long> NumbersOf(const vtq::Instance& instance, const char* property) {
  std::vector<unsigned long> numbers;
  const NQZMVTQ20::TCIMValue value = instance.GetProperty(property, {}).value;
  if (!value.IsArray()) return numbers;
  for (const auto& element : value.GetArray()) {
    if (!element.IsNull()) numbers.push_back(static_cast<unsigned long>(element));
  }
  return numbers;
}

/// The list of sizes omits regions without a size, so sizes can be assigned only if both lists have
/// the same length.
std::string Regions(const vtq::Instance& instance, const char* addresses, const char* lengths) {
  const std::vector<unsigned long> starts = NumbersOf(instance, addresses);
  const std::vector<unsigned long> sizes = NumbersOf(instance, lengths);
  std::vector<std::string> regions;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    std::string region = fmt::format("{:x}", starts[i]);
    if (sizes.size() == starts.size()) region += fmt::format(" ({})", SizeText(sizes[i]));
    regions.push_back(std::move(region));
  }
  return fmt::format("{}", fmt::join(regions, ", "));
}

std::string CodeText(const PciFunction& function) {
  const std::string words =
      ClassText(ClassCode{function.classCode, function.subclass, function.programmingInterface});
  if (words.empty()) return "";
  const std::string code = InHex(function.classCode, 2) + InHex(function.subclass, 2) +
                           InHex(function.programmingInterface, 2);
  return fmt::format("{} ({})", words, code);
}

std::string SlotText(const Shown& shown) {
  if (!shown.slot) return shown.isOnBoard ? "none (on the board)" : "unknown";
  const Slot& slot = *shown.slot;
  std::string text = SlotName(slot);
  if (text != Printable(slot.tag)) text += ", " + Printable(slot.tag);
  if (slot.id) text += fmt::format(", slot ID {}", *slot.id);
  return text;
}

std::string SubsystemText(const PciFunction& function) {
  if (!function.subsystemVendorId && !function.subsystemId) return "";
  return InHex(function.subsystemVendorId, 4) + ":" + InHex(function.subsystemId, 4);
}

Facts FunctionFacts(const Shown& shown) {
  const PciFunction& function = *shown.function;
  Facts facts = {{"Address", AddressText(function)},
                 {"Kind", function.kind},
                 {"Class", CodeText(function)},
                 {"Vendor ID", InHex(function.vendorId, 4)},
                 {"Device ID", InHex(function.deviceId, 4)},
                 {"Revision", InHex(function.revision, 2)},
                 {"Subsystem", SubsystemText(function)},
                 {"Slot", SlotText(shown)}};
  if (function.kind != "device") return facts;
  const vtq::Instance& instance = *shown.instance;
  const auto irq = NumberOf(instance, "IRQ");
  facts.emplace_back("Interrupt", irq ? std::to_string(*irq) : "");
  facts.emplace_back("Memory", Regions(instance, "MEMAddress", "MEMLength"));
  facts.emplace_back("I/O ports", Regions(instance, "IOAddress", "IOLength"));
  return facts;
}

std::string VoltageText(unsigned code) {
  constexpr const char* kVoltages[] = {"unknown", "other", "3.3 V", "5 V"};
  return code < std::size(kVoltages) ? kVoltages[code] : std::to_string(code);
}

std::string Voltages(const vtq::Instance& instance) {
  std::vector<std::string> voltages;
  for (const unsigned long code : NumbersOf(instance, "VccMixedVoltageSupport")) {
    voltages.push_back(VoltageText(static_cast<unsigned>(code)));
  }
  return fmt::format("{}", fmt::join(voltages, ", "));
}

std::string Texts(const vtq::Instance& instance, const char* property) {
  std::vector<std::string> texts;
  const NQZMVTQ20::TCIMValue value = instance.GetProperty(property, {}).value;
  if (!value.IsArray()) return "";
  for (const auto& element : value.GetArray()) texts.push_back(Printable(ScalarText(element)));
  return fmt::format("{}", fmt::join(texts, ", "));
}

Facts SlotFacts(const Shown& shown) {
  const Slot& slot = *shown.slot;
  const vtq::Instance& instance = *shown.instance;
  return {{"Slot", SlotName(slot)},
          {"Tag", Printable(slot.tag)},
          {"Slot ID", slot.id ? std::to_string(*slot.id) : ""},
          {"Type", InWords(slot.type, ConnectorTypeText)},
          {"Usage", InWords(slot.usage, SlotUsageText)},
          {"Width", InWords(slot.width, SlotWidthText)},
          {"Length", InWords(NumberOf(instance, "SlotLength"), SlotLengthText)},
          {"Status", Texts(instance, "StatusDescriptions")},
          {"Hot-plug", YesOrNo(slot.hotPlug)},
          {"Shared", YesOrNo(BooleanOf(instance, "Shared"))},
          {"PME signal", YesOrNo(BooleanOf(instance, "PMESignal"))},
          {"Voltages", Voltages(instance)}};
}

void WriteFacts(Output& output, const Facts& facts, const Terminal& terminal) {
  for (const auto& [name, words] : facts) {
    if (words.empty()) continue;
    const std::string label = PadRight(name, 10);
    output.Write("  " + Coloured(label, Colour::kBold, terminal) + "  " + words + "\n");
  }
}

void WriteTitle(Output& output, const std::string& title, const Terminal& terminal) {
  output.Write(Coloured(title, Colour::kBold, terminal) + "\n");
}

void WriteFunctions(Output& output, const std::vector<PciFunction>& functions,
                    const Terminal& terminal) {
  WriteTitle(output, functions.empty() ? "\nNo functions in this slot" : "\nFunctions in this slot",
             terminal);
  for (const PciFunction& function : functions) {
    output.Write(FitLine(
        fmt::format("  {}  {}", AddressText(function), Printable(function.description)), terminal));
    output.Write("\n");
  }
}

}  // namespace

void WriteShown(Output& output, const Shown& shown, const Terminal& terminal) {
  if (shown.function) {
    const std::string description = Printable(shown.function->description);
    WriteTitle(output, description.empty() ? AddressText(*shown.function) : description, terminal);
    WriteFacts(output, FunctionFacts(shown), terminal);
  } else if (shown.slot) {
    WriteTitle(output, "System slot " + SlotName(*shown.slot), terminal);
    WriteFacts(output, SlotFacts(shown), terminal);
    WriteFunctions(output, shown.slot->functions, terminal);
  } else {
    WriteTitle(output, shown.cimClass->GetSchema().description, terminal);
  }
  WriteTitle(output, "\n" + shown.cimClass->GetSchema().name, terminal);
  output.Write("  " + Printable(shown.instance->GetPath()) + "\n");
  TableWriter(output).Write(*shown.cimClass, *shown.instance);
}

void WriteShownJson(Output& output, const Shown& shown) {
  output.Write("{");
  if (shown.function) {
    output.Write("\"function\":" + SafeJson(FunctionJson(*shown.function).dump()) + ",\n");
  }
  if (shown.slot) output.Write("\"slot\":" + SafeJson(SlotJson(*shown.slot).dump()) + ",\n");
  output.Write("\"instance\":");
  JsonObjects objects(output);
  objects.BeginClass(*shown.cimClass);
  objects.Write(*shown.cimClass, *shown.instance);
  output.Write("}\n");
}

}  // namespace pciinfo
