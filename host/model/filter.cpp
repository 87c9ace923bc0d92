// SPDX-License-Identifier: Apache-2.0
#include "host/model/filter.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

#include "host/base/errors.h"
#include "host/model/slot_name.h"

namespace pciinfo {
namespace {

using Test = std::function<bool(const PciFunction& function, const Slot* slot)>;

/// Makes a test that a field of a function equals a number.
Test Equals(std::optional<unsigned> PciFunction::*field, unsigned wanted) {
  return [=](const PciFunction& function, const Slot*) { return function.*field == wanted; };
}

std::optional<Test> IdTest(std::optional<unsigned> PciFunction::*field, std::string_view value) {
  const auto id = ParseHex(value, 0xFFFF);
  if (!id) return std::nullopt;
  return Equals(field, *id);
}

std::optional<Test> VendorTest(std::string_view value) {
  return IdTest(&PciFunction::vendorId, value);
}

std::optional<Test> DeviceTest(std::string_view value) {
  return IdTest(&PciFunction::deviceId, value);
}

/// "VENDOR:DEVICE" or "VENDOR".
std::optional<Test> SubsystemTest(std::string_view value) {
  const std::size_t colon = value.find(':');
  auto vendor = IdTest(&PciFunction::subsystemVendorId, value.substr(0, colon));
  if (colon == std::string_view::npos) return vendor;
  const auto device = IdTest(&PciFunction::subsystemId, value.substr(colon + 1));
  if (!vendor || !device) return std::nullopt;
  return [vendor = *vendor, device = *device](const PciFunction& function, const Slot* slot) {
    return vendor(function, slot) && device(function, slot);
  };
}

/// Two, four or six digits: base class, with subclass, with programming interface.
std::optional<Test> ClassTest(std::string_view value) {
  const auto code = ParseHex(value, 0xFFFFFF);
  if (value.starts_with("0x") || value.starts_with("0X")) value.remove_prefix(2);
  if (!code || value.size() == 3 || value.size() == 5) return std::nullopt;
  const std::size_t count = (value.size() + 1) / 2;
  return [code = *code, count](const PciFunction& function, const Slot*) {
    const std::optional<unsigned> bytes[] = {function.classCode, function.subclass,
                                             function.programmingInterface};
    for (std::size_t i = 0; i < count; ++i) {
      if (bytes[i] != ((code >> (8 * (count - 1 - i))) & 0xFFU)) return false;
    }
    return true;
  };
}

std::optional<Test> BusTest(std::string_view value) {
  const auto bus = ParseHex(value, 255);
  if (!bus) return std::nullopt;
  return [bus = *bus](const PciFunction& function, const Slot*) {
    return function.address && function.address->bus == bus;
  };
}

/// An address; without the function number it matches all functions of the device.
std::optional<Test> AddressTest(std::string_view value) {
  const bool hasFunction = value.find('.') != std::string_view::npos;
  const auto written = ParseAddress(hasFunction ? std::string(value) : std::string(value) + ".0");
  if (!written) return std::nullopt;
  return [wanted = *written, hasFunction](const PciFunction& function, const Slot*) {
    if (!function.address || wanted.domain.value_or(function.domain) != function.domain) {
      return false;
    }
    PciAddress address = *function.address;
    if (!hasFunction) address.function = 0;
    return address == wanted.address;
  };
}

std::optional<Test> KindTest(std::string_view value) {
  if (value != "device" && value != "bridge") return std::nullopt;
  return [kind = std::string(value)](const PciFunction& function, const Slot*) {
    return function.kind == kind;
  };
}

std::optional<Test> SlotTest(std::string_view value) {
  if (value.empty()) return std::nullopt;
  return [name = std::string(value)](const PciFunction&, const Slot* slot) {
    return slot == nullptr ? name == "none" : IsNamed(*slot, name);
  };
}

struct KeyRow {
  const char* key;
  std::optional<Test> (*read)(std::string_view value);
  const char* value;
};

constexpr KeyRow kKeys[] = {
    {"class", &ClassTest, "class code, hexadecimal: 02, 0200 or 020000"},
    {"vendor", &VendorTest, "vendor ID, hexadecimal"},
    {"device", &DeviceTest, "device ID, hexadecimal"},
    {"subsystem", &SubsystemTest, "subsystem VENDOR or VENDOR:DEVICE, hexadecimal"},
    {"bus", &BusTest, "bus number, hexadecimal"},
    {"address", &AddressTest, "[DOMAIN:]BUS:DEVICE[.FUNCTION]"},
    {"kind", &KindTest, "device or bridge"},
    {"slot", &SlotTest, "slot name or ID (tag with instances), or none for functions in no slot"},
};

std::string KeyList() { return fmt::format("{}", fmt::join(FilterKeys(), ", ")); }

}  // namespace

Filter::Filter(const std::vector<std::string>& texts)
    : text_(fmt::format("{}", fmt::join(texts, " or "))) {
  for (const std::string& text : texts) alternatives_.push_back(ReadTerms(text));
}

Filter::Terms Filter::ReadTerms(const std::string& text) {
  Terms terms;
  std::size_t start = 0;
  for (std::size_t comma = 0; comma != std::string::npos; start = comma + 1) {
    comma = text.find(',', start);
    terms.push_back(ReadTerm(text.substr(start, comma - start)));
  }
  return terms;
}

Filter::Term Filter::ReadTerm(const std::string& text) {
  const std::size_t equals = text.find('=');
  const std::string key = text.substr(0, equals);
  const auto* row = std::find_if(std::begin(kKeys), std::end(kKeys),
                                 [&key](const KeyRow& entry) { return key == entry.key; });
  if (equals == std::string::npos || row == std::end(kKeys)) {
    throw UsageError(
        fmt::format("invalid filter \"{}\": use KEY=VALUE; the keys are {}", text, KeyList()));
  }
  const std::optional<Test> test = row->read(std::string_view(text).substr(equals + 1));
  if (!test) {
    throw UsageError(fmt::format("invalid filter \"{}\": expected {}", text, row->value));
  }
  return {key == "slot", *test};
}

bool Filter::Keeps(const PciFunction& function, const Slot* slot) const {
  if (IsEmpty()) return true;
  return std::any_of(alternatives_.begin(), alternatives_.end(), [&](const Terms& terms) {
    return std::all_of(terms.begin(), terms.end(),
                       [&](const Term& term) { return term.holds(function, slot); });
  });
}

bool Filter::Keeps(const Slot& slot) const {
  if (IsEmpty()) return true;
  return std::any_of(alternatives_.begin(), alternatives_.end(), [&](const Terms& terms) {
    return std::all_of(terms.begin(), terms.end(),
                       [&](const Term& term) { return term.isAboutSlot && term.holds({}, &slot); });
  });
}

std::vector<std::string> FilterKeys() {
  std::vector<std::string> keys;
  for (const KeyRow& row : kKeys) keys.emplace_back(row.key);
  return keys;
}

std::string FilterHelp() {
  std::string help = "Keys of --filter:\n";
  for (const KeyRow& row : kKeys) help += fmt::format("  {:10} {}\n", row.key, row.value);
  return help;
}

}  // namespace pciinfo
