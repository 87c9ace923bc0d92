// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/fleet_filter.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>
#include <optional>

#include "host/base/errors.h"
#include "host/model/address.h"

namespace pciinfo {
namespace {

/// What a term says of a column; nothing for a value that cannot be meant.
using Condition = std::optional<std::string>;

Condition TextTerm(const std::string& column, const std::string& value, Conditions& conditions) {
  return IsText(column, value, conditions);
}

/// "none": in no slot.
Condition SlotTerm(const std::string& column, const std::string& value, Conditions& conditions) {
  return IsText(column, value == "none" ? "" : value, conditions);
}

Condition IdTerm(const std::string& column, const std::string& value, Conditions& conditions) {
  const auto id = ParseHex(value, 0xFFFF);
  if (!id) return std::nullopt;
  return fmt::format("{} = {}", column, conditions.Bind(fmt::format("{:04x}", *id)));
}

Condition SerialTerm(const std::string& column, const std::string& value, Conditions& conditions) {
  // The index contains only those that are known.
  return fmt::format("{} <> '' AND {}", column, IsText(column, value, conditions));
}

/// "VENDOR:DEVICE" or "VENDOR".
Condition SubsystemTerm(const std::string&, const std::string& value, Conditions& conditions) {
  const std::size_t colon = value.find(':');
  Condition vendor = IdTerm("subsystem_vendor_id", value.substr(0, colon), conditions);
  if (colon == std::string::npos) return vendor;
  const Condition device = IdTerm("subsystem_id", value.substr(colon + 1), conditions);
  if (!vendor || !device) return std::nullopt;
  return *vendor + " AND " + *device;
}

/// Two digits: base class; four: with subclass.
Condition ClassTerm(const std::string& column, const std::string& value, Conditions& conditions) {
  const auto code = ParseHex(value, 0xFFFF);
  const std::string digits = value.starts_with("0x") ? value.substr(2) : value;
  if (!code || (digits.size() != 2 && digits.size() != 4)) return std::nullopt;
  const std::string text = fmt::format("{:0{}x}", *code, digits.size());
  return IsText(column, digits.size() == 2 ? text + "*" : text, conditions);
}

Condition AddressTerm(const std::string& column, const std::string& value, Conditions& conditions) {
  const auto written = ParseAddress(value);
  if (!written) return std::nullopt;
  const DomainAddress address{written->domain.value_or(0), written->address};
  return fmt::format("{} = {}", column, conditions.Bind(FormatAddress(address)));
}

struct FleetKey {
  const char* name;
  const char* column;
  Condition (*read)(const std::string& column, const std::string& value, Conditions& conditions);
  const char* value;
};

constexpr FleetKey kFleetKeys[] = {
    {"machine", "machine", &TextTerm, "name of the machine"},
    {"maker", "maker", &TextTerm, "maker of the machine"},
    {"product", "product", &TextTerm, "product name of the machine"},
    {"bios", "bios_version", &TextTerm, "version of the machine's firmware"},
    {"class", "class_code", &ClassTerm, "class code, hexadecimal: 02 or 0200"},
    {"vendor", "vendor_id", &IdTerm, "vendor ID, hexadecimal"},
    {"device", "device_id", &IdTerm, "device ID, hexadecimal"},
    {"subsystem", "", &SubsystemTerm, "subsystem VENDOR or VENDOR:DEVICE, hexadecimal"},
    {"address", "address", &AddressTerm, "[DOMAIN:]BUS:DEVICE.FUNCTION"},
    {"slot", "slot", &SlotTerm, "slot name, or none for cards in no slot"},
    {"driver", "driver", &TextTerm, "driver that is bound"},
    {"firmware", "firmware", &TextTerm, "version of the card's firmware"},
    {"serial", "serial_number", &SerialTerm, "serial number"},
    {"state", "state", &TextTerm, "occupied, empty or unknown"},
    {"severity", "severity", &TextTerm, "error, warning or note"},
    {"code", "code", &TextTerm, "code of the finding"},
    {"object", "object", &TextTerm, "address, slot or name that it is about"},
    {"kind", "kind", &TextTerm, "machine, function, slot, finding, network, block, nvme, ..."},
    {"property", "property", &TextTerm, "property that changed"},
};

const FleetKey& KeyNamed(const std::string& name, const std::string& text,
                         const std::vector<std::string>& keys) {
  const bool isKnown = std::find(keys.begin(), keys.end(), name) != keys.end();
  const auto* key = std::find_if(std::begin(kFleetKeys), std::end(kFleetKeys),
                                 [&name](const FleetKey& entry) { return name == entry.name; });
  if (isKnown && key != std::end(kFleetKeys)) return *key;
  throw UsageError(fmt::format("invalid filter \"{}\": use KEY=VALUE; the keys are {}", text,
                               fmt::join(keys, ", ")));
}

std::string TermCondition(const std::string& text, const std::vector<std::string>& keys,
                          Conditions& conditions) {
  const std::size_t equals = text.find('=');
  const FleetKey& key =
      KeyNamed(equals == std::string::npos ? "" : text.substr(0, equals), text, keys);
  const Condition condition = key.read(key.column, text.substr(equals + 1), conditions);
  if (condition) return *condition;
  throw UsageError(fmt::format("invalid filter \"{}\": expected {}", text, key.value));
}

std::string AllTerms(const std::string& text, const std::vector<std::string>& keys,
                     Conditions& conditions) {
  std::vector<std::string> terms;
  std::size_t start = 0;
  for (std::size_t comma = 0; comma != std::string::npos; start = comma + 1) {
    comma = text.find(',', start);
    terms.push_back(TermCondition(text.substr(start, comma - start), keys, conditions));
  }
  return fmt::format("({})", fmt::join(terms, " AND "));
}

}  // namespace

void AddFilter(const std::vector<std::string>& texts, const std::vector<std::string>& keys,
               Conditions& conditions) {
  if (texts.empty()) return;
  std::vector<std::string> alternatives;
  alternatives.reserve(texts.size());
  for (const std::string& text : texts) alternatives.push_back(AllTerms(text, keys, conditions));
  conditions.Require(fmt::format("({})", fmt::join(alternatives, " OR ")));
}

std::vector<std::string> FleetFilterKeys() {
  std::vector<std::string> names;
  for (const FleetKey& key : kFleetKeys) names.emplace_back(key.name);
  return names;
}

std::string FleetFilterHelp() {
  std::string help =
      "Keys of --filter (a question takes those that it shows; * stands for any text):\n";
  for (const FleetKey& key : kFleetKeys) help += fmt::format("  {:10} {}\n", key.name, key.value);
  return help;
}

}  // namespace pciinfo
