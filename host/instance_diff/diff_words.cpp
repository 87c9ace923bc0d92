// SPDX-License-Identifier: Apache-2.0
#include "host/instance_diff/diff_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "host/console/text.h"
#include "host/formats/value_text.h"
#include "host/model/address.h"
#include "host/model/smbios_names.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

std::string PlainText(const TCIMValue& value) {
  if (value.IsNull()) return "(not set)";
  if (!value.IsArray()) {
    return IsText(value.GetType()) ? '"' + ScalarText(value) + '"' : ScalarText(value);
  }
  std::string text;
  for (const TCIMValue& element : value.GetArray()) {
    text += (text.empty() ? "" : ", ") + PlainText(element);
  }
  return '[' + text + ']';
}

/// Returns the number of a value or of an array with one element; nothing for other values.
std::optional<unsigned> CodeOf(const TCIMValue& value) {
  if (value.IsArray()) {
    const auto& elements = value.GetArray();
    return elements.size() == 1 ? CodeOf(elements.front()) : std::nullopt;
  }
  if (value.IsNull()) return std::nullopt;
  return static_cast<unsigned>(value);
}

template <std::string (*words)(unsigned)>
std::string CodeText(const TCIMValue& value) {
  const auto code = CodeOf(value);
  return code ? words(*code) : PlainText(value);
}

std::string HexByte(unsigned number) { return fmt::format("{:02x}", number); }
std::string HexWord(unsigned number) { return fmt::format("{:04x}", number); }

std::string LocationText(const TCIMValue& value) {
  if (value.IsNull()) return PlainText(value);
  const auto address = ParseLocation(value.GetString());
  return address ? FormatAddress(*address) : PlainText(value);
}

std::string HexArray(const TCIMValue& value) {
  if (!value.IsArray()) return PlainText(value);
  std::string text;
  for (const TCIMValue& element : value.GetArray()) {
    if (!text.empty()) text += ", ";
    text += element.IsNull() ? "-" : fmt::format("{:#x}", static_cast<unsigned long>(element));
  }
  return '[' + text + ']';
}

struct WordsRow {
  std::string_view property;
  const char* words;
  std::string (*text)(const TCIMValue& value);
};

constexpr WordsRow kWords[] = {
    {"Revision", "hardware revision", &CodeText<&HexByte>},
    {"VendorID", "vendor", &CodeText<&HexWord>},
    {"PciDeviceID", "device", &CodeText<&HexWord>},
    {"SubsystemVendorID", "subsystem vendor", &CodeText<&HexWord>},
    {"SubsystemID", "subsystem", &CodeText<&HexWord>},
    {"ClassCode", "base class", &CodeText<&HexByte>},
    {"Subclass", "subclass", &CodeText<&HexByte>},
    {"ProgrammingInterface", "programming interface", &CodeText<&HexByte>},
    {"Description", "description", &PlainText},
    {"Location", "address", &LocationText},
    {"MEMAddress", "memory addresses", &HexArray},
    {"MEMLength", "memory sizes", &HexArray},
    {"IOAddress", "I/O addresses", &HexArray},
    {"IOLength", "I/O sizes", &HexArray},
    {"IRQ", "interrupt", &PlainText},
    {"CurrentUsage", "usage", &CodeText<&SlotUsageText>},
    {"ConnectorType", "slot type", &CodeText<&ConnectorTypeText>},
    {"MaxDataWidth", "slot width", &CodeText<&SlotWidthText>},
    {"SlotDesignation", "designation", &PlainText},
    {"Number", "slot ID", &PlainText},
    {"SupportsHotPlug", "hot plug", &PlainText},
};

std::string LineText(const TCIMValue::TArray& lines, std::size_t number) {
  return number < lines.size() ? PlainText(lines[number]) : "(end of listing)";
}

/// Shows only the first difference, because listings are long.
std::string ListingText(const TCIMValue& before, const TCIMValue& after) {
  if (!before.IsArray() || !after.IsArray()) {
    const auto size = [](const TCIMValue& value) {
      return value.IsArray() ? fmt::format("{} lines", value.GetArray().size()) : "(not set)";
    };
    return fmt::format("listing: {} -> {}", size(before), size(after));
  }
  const auto& old = before.GetArray();
  const auto& now = after.GetArray();
  const auto [place, other] = std::mismatch(old.begin(), old.end(), now.begin(), now.end());
  const auto first = static_cast<std::size_t>(place - old.begin());
  return fmt::format("listing: {} lines -> {} lines; first difference at line {}: {} -> {}",
                     old.size(), now.size(), first + 1, LineText(old, first), LineText(now, first));
}

/// Says in words that a slot became empty or got a card.
std::string UsageText(const TCIMValue& before, const TCIMValue& after) {
  constexpr unsigned kAvailableCode = 3;
  constexpr unsigned kInUseCode = 4;
  const auto old = CodeOf(before);
  const auto now = CodeOf(after);
  if (old == kInUseCode && now == kAvailableCode) return "now empty: ";
  if (old == kAvailableCode && now == kInUseCode) return "no longer empty: ";
  return "";
}

}  // namespace

std::string ChangeText(const std::string& property, const TCIMValue& before,
                       const TCIMValue& after) {
  if (property == "RawResult") return Printable(ListingText(before, after));
  for (const WordsRow& row : kWords) {
    if (row.property != property) continue;
    const std::string usage = property == "CurrentUsage" ? UsageText(before, after) : "";
    return Printable(
        fmt::format("{}{} {} -> {}", usage, row.words, row.text(before), row.text(after)));
  }
  return Printable(fmt::format("{}: {} -> {}", property, PlainText(before), PlainText(after)));
}

}  // namespace pciinfo
