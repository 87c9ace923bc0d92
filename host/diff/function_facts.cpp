// SPDX-License-Identifier: Apache-2.0
#include "host/diff/function_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>

#include "host/console/text.h"
#include "host/diff/property_changes.h"
#include "host/machine/link_text.h"
#include "host/machine/names.h"

namespace pciinfo {
namespace {

using OptionalText = std::optional<std::string>;

OptionalText HexText(const std::optional<unsigned>& number) {
  return number ? OptionalText(fmt::format("{:02x}", *number)) : std::nullopt;
}

OptionalText WidthFact(const std::optional<unsigned>& width) {
  return width ? OptionalText(fmt::format("x{}", *width)) : std::nullopt;
}

OptionalText KnownText(const std::string& text) {
  return text.empty() ? std::nullopt : OptionalText(Printable(text));
}

OptionalText SubsystemText(const MachineFunction& function) {
  if (!function.subsystemVendorId || !function.subsystemId) return std::nullopt;
  return fmt::format("{:04x}:{:04x}", *function.subsystemVendorId, *function.subsystemId);
}

OptionalText ClassText(const MachineFunction& function) {
  if (!function.baseClass || !function.subclass) return std::nullopt;
  return fmt::format("{:02x}{:02x}", *function.baseClass, *function.subclass);
}

OptionalText DriverText(const StateFunction& function) {
  const std::string& driver = function.Get().driver;
  if (!driver.empty()) return Printable(driver);
  return function.state.tellsDrivers ? OptionalText("(none)") : std::nullopt;
}

void AddHeaderFacts(std::vector<Fact>& facts, const StateFunction& at) {
  const MachineFunction& function = at.Get();
  const std::string because =
      at.state.functions[at.place].TextOf("CapabilitiesUnknownBecause").value_or("");
  facts.push_back({"Subsystem", "subsystem", SubsystemText(function)});
  facts.push_back({"Revision", "revision", HexText(function.revision)});
  facts.push_back({"Class", "class", ClassText(function)});
  facts.push_back({"Driver", "driver", DriverText(at)});
  facts.push_back(
      {"MaxLinkWidth", "maximum link width", WidthFact(function.link.maxWidth), because});
  facts.push_back(
      {"MaxLinkSpeed", "maximum link speed", KnownText(function.link.maxSpeed), because});
  // A port's link is that of the device below it, which tells its width. Without a device the link
  // is down, which is no news when the device has gone.
  const OptionalText width = LeadsToLink(function) ? std::nullopt : WidthFact(function.link.width);
  facts.push_back({"LinkWidth", "link width", width, because});
}

struct DetailRow {
  const char* property;
  const char* words;
  const char* unknownBecause;  ///< the property that says why; empty if none does
};

constexpr DetailRow kSerials[] = {
    {"SerialNumber", "serial number", "ExtendedUnknownBecause"},
    {"ProductSerialNumber", "serial number of the product", "VitalProductDataUnknownBecause"},
    {"NvmeSerialNumbers", "serial number of the drive", ""},
};

constexpr DetailRow kDetails[] = {
    {"ProductPartNumber", "part number", "VitalProductDataUnknownBecause"},
    {"ProductEngineeringChange", "engineering change level", "VitalProductDataUnknownBecause"},
    {"NvmeFirmwareRevisions", "firmware", ""},
    {"InfinibandFirmwareVersions", "firmware", ""},
};

template <class Rows>
std::vector<Fact> DetailFacts(const StateFunction& at, const Rows& rows) {
  const NamedProperties& details = at.state.details[at.place];
  const NamedProperties& properties = at.state.functions[at.place];
  std::vector<Fact> facts;
  for (const DetailRow& row : rows) {
    auto because = properties.TextOf("CapabilitiesUnknownBecause");
    if (!because) because = details.TextOf(row.unknownBecause);
    facts.push_back({row.property, row.words, details.TextOf(row.property), because.value_or("")});
  }
  return facts;
}

unsigned LanesIn(const std::string& width) {
  unsigned lanes = 0;
  std::from_chars(width.data() + 1, width.data() + width.size(), lanes);
  return lanes;
}

/// Says what a change means where that is more than another value.
void Explain(FactChange& change) {
  if (change.property == "LinkWidth") {
    const bool isNarrower = LanesIn(*change.after) < LanesIn(*change.before);
    change.text = fmt::format("link {}: {} -> {}", isNarrower ? "narrower" : "wider",
                              *change.before, *change.after);
  }
  const bool isSerial =
      std::any_of(std::begin(kSerials), std::end(kSerials),
                  [&change](const DetailRow& row) { return change.property == row.property; });
  if (isSerial) change.text = "replaced by another of the same model: " + change.text;
}

/// What is compared as facts, or not at all: the keys, and names from a file of the program.
const std::set<std::string>& ComparedOtherwise() {
  static const std::set<std::string> names = {"Address",
                                              "VendorID",
                                              "DeviceID",
                                              "VendorName",
                                              "DeviceName",
                                              "SubsystemVendorID",
                                              "SubsystemID",
                                              "BaseClass",
                                              "Subclass",
                                              "Revision",
                                              "Driver",
                                              "SubsystemVendorName",
                                              "MaxLinkWidth",
                                              "MaxLinkSpeed",
                                              "LinkWidth",
                                              "SubsystemName",
                                              "ClassName",
                                              "ProgrammingInterfaceName",
                                              "Place",
                                              "PlaceReason",
                                              "SerialNumber",
                                              "ParentPort",
                                              "ProductSerialNumber",
                                              "NvmeSerialNumbers",
                                              "ProductPartNumber",
                                              "ProductEngineeringChange",
                                              "NvmeFirmwareRevisions",
                                              "InfinibandFirmwareVersions"};
  return names;
}

void Append(std::vector<FactChange>& changes, std::vector<FactChange> more) {
  changes.insert(changes.end(), std::make_move_iterator(more.begin()),
                 std::make_move_iterator(more.end()));
}

std::vector<Fact> FactsOf(const StateFunction& at) {
  std::vector<Fact> facts = DetailFacts(at, kSerials);
  AddHeaderFacts(facts, at);
  for (Fact& fact : DetailFacts(at, kDetails)) facts.push_back(std::move(fact));
  return facts;
}

}  // namespace

bool AreOfOneModel(const MachineFunction& before, const MachineFunction& after) {
  return before.vendorId == after.vendorId && before.deviceId == after.deviceId;
}

std::vector<FactChange> CompareFunction(const StateFunction& before, const StateFunction& after,
                                        bool all, UnknownFacts& unknown) {
  std::vector<FactChange> changes =
      CompareFacts(FactsOf(before), FactsOf(after), "function", unknown);
  for (FactChange& change : changes) Explain(change);
  if (!all) return changes;
  const auto compareAll = [&](const auto& old, const auto& now) {
    Append(changes, CompareAllProperties(old[before.place], now[after.place], ComparedOtherwise()));
  };
  compareAll(before.state.functions, after.state.functions);
  compareAll(before.state.details, after.state.details);
  return changes;
}

}  // namespace pciinfo
