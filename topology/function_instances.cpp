// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <cstdio>

#include "topology/instances.h"
#include "topology/link_properties.h"
#include "topology/properties.h"

namespace topology {
namespace {

using NQZMVTQ20::TCIMValue;
using Type = TCIMValue::TCIMType;

// Bits of the flags in a `resource` file (the kernel's IORESOURCE_*).
constexpr std::uint64_t kIo = 0x100;
constexpr std::uint64_t kPrefetchable = 0x2000;
constexpr std::uint64_t kWide = 0x100000;
constexpr unsigned kRomNumber = 6;

std::string KindText(const Region& region) {
  if ((region.flags & kIo) != 0) return "I/O";
  return region.number == kRomNumber ? "expansion ROM" : "memory";
}

/// "00-00-00-00-00-00-00-00", as lspci writes a device serial number.
std::string SerialText(std::uint64_t number) {
  std::string text;
  for (int shift = 56; shift >= 0; shift -= 8) {
    std::array<char, 4> digits{};
    std::snprintf(digits.data(), digits.size(), "%02x",
                  static_cast<unsigned>(number >> shift & 0xFF));
    text += (text.empty() ? "" : "-") + std::string(digits.data());
  }
  return text;
}

std::string InterruptText(const ConfigFacts& config) {
  if (!config.capabilitiesKnown) return "";
  if (config.msixEnabled) return "MSI-X";
  return config.msiEnabled ? "MSI" : "INTx or none";
}

std::string PlaceText(Place place) {
  switch (place) {
    case Place::kSlot:
      return "slot";
    case Place::kShared:
      return "one of several slots";
    case Place::kUnnamedSlot:
      return "slot without a name";
    case Place::kOnBoard:
      return "on board";
    case Place::kUnknown:
      return "unknown";
  }
  return "";
}

void SetIdentity(const ConfigFacts& config, PropertyWriter& writer) {
  writer.Set("VendorID", config.vendor);
  writer.Set("DeviceID", config.device);
  writer.Set("SubsystemVendorID", config.subsystemVendor);
  writer.Set("SubsystemID", config.subsystemDevice);
  writer.Set("BaseClass", config.BaseClass());
  writer.Set("Subclass", static_cast<std::uint8_t>(config.classCode >> 8));
  writer.Set("ProgrammingInterface", static_cast<std::uint8_t>(config.classCode));
  writer.Set("Revision", config.revision);
  writer.Set("HeaderType", config.headerType);
  writer.Set("MultiFunction", config.multiFunction);
}

void SetRegions(const std::vector<Region>& regions, PropertyWriter& writer) {
  writer.SetArray("RegionNumber", Type::kUint8, regions,
                  [](const Region& region) { return static_cast<std::uint8_t>(region.number); });
  writer.SetArray("RegionStart", Type::kUint64, regions,
                  [](const Region& region) { return region.start; });
  writer.SetArray("RegionSize", Type::kUint64, regions,
                  [](const Region& region) { return region.size; });
  writer.SetArray("RegionKind", Type::kString, regions, KindText);
  writer.SetArray("RegionPrefetchable", Type::kBoolean, regions,
                  [](const Region& region) { return (region.flags & kPrefetchable) != 0; });
  writer.SetArray("Region64Bit", Type::kBoolean, regions,
                  [](const Region& region) { return (region.flags & kWide) != 0; });
}

void SetCapabilities(const ConfigFacts& config, PropertyWriter& writer) {
  writer.Set("InterruptMode", InterruptText(config));
  if (config.serialNumber) writer.Set("SerialNumber", SerialText(*config.serialNumber));
  if (!config.extendedKnown) return;
  writer.Set("ErrorReporting", config.hasErrorReporting);
  writer.Set("AlternativeRoutingID", config.hasAlternativeRouting);
  writer.Set("ResizableRegions", config.hasResizableBar);
  if (!config.virtualFunctions) return;
  writer.Set("TotalVirtualFunctions", config.virtualFunctions->total);
  writer.Set("EnabledVirtualFunctions", config.virtualFunctions->enabled);
}

void SetKernelFacts(const Function& function, PropertyWriter& writer) {
  writer.Set("Driver", function.driver);
  writer.Set("NumaNode", function.numaNode);
  writer.Set("IommuGroup", function.iommuGroup);
  writer.Set("PowerState", function.powerState);
  writer.Set("EnableCount", function.enableCount);
  writer.Set("FirmwareLabel", function.label);
  writer.Set("FirmwareIndex", function.index);
  writer.Set("FirmwarePath", function.firmwarePath);
  writer.Set("SlotUserNumber", function.slotUserNumber);
  if (function.physicalFunction) {
    writer.Set("PhysicalFunction", ToText(*function.physicalFunction));
  }
  writer.SetTexts("NetworkInterfaces", function.networkInterfaces);
  writer.SetTexts("BlockDevices", function.blockDevices);
}

/// Looks the names of each kind of function up once, because a lookup reads many lines.
class KindNames {
 public:
  explicit KindNames(const PciNames& names) : names_(names) {}

  void Set(const ConfigFacts& config, PropertyWriter& writer) {
    const Kind kind{config.vendor, config.device, config.subsystemVendor.value_or(0),
                    config.subsystemDevice.value_or(0), config.classCode};
    auto known = known_.find(kind);
    if (known == known_.end()) known = known_.emplace(kind, LookUp(config)).first;
    constexpr std::array<const char*, 6> kProperties{
        "VendorName",    "DeviceName", "SubsystemVendorName",
        "SubsystemName", "ClassName",  "ProgrammingInterfaceName"};
    for (std::size_t i = 0; i < kProperties.size(); ++i) {
      writer.Set(kProperties[i], std::string(known->second[i]));
    }
  }

 private:
  using Kind = std::array<std::uint32_t, 5>;
  using Texts = std::array<std::string_view, 6>;

  Texts LookUp(const ConfigFacts& config) const {
    Texts texts{names_.Vendor(config.vendor), names_.Device(config.vendor, config.device)};
    if (config.subsystemVendor && config.subsystemDevice) {
      texts[2] = names_.Vendor(*config.subsystemVendor);
      texts[3] = names_.Subsystem(config.vendor, config.device, *config.subsystemVendor,
                                  *config.subsystemDevice);
    }
    texts[4] = names_.Class(config.classCode);
    texts[5] = names_.ProgrammingInterface(config.classCode);
    return texts;
  }

  const PciNames& names_;
  std::map<Kind, Texts> known_;
};

Properties InstanceOf(const Snapshot& snapshot, std::size_t place, KindNames& names) {
  const Function& function = snapshot.GetMachine().functions[place];
  PropertyWriter writer;
  writer.Set("Address", ToText(function.address));
  SetIdentity(function.config, writer);
  names.Set(function.config, writer);
  if (const auto parent = snapshot.GetTree().GetParent(place)) {
    writer.Set("ParentPort", ToText(snapshot.GetTree().At(*parent).address));
  }
  if (function.config.bridge) {
    writer.Set("SecondaryBus", function.config.bridge->secondary);
    writer.Set("SubordinateBus", function.config.bridge->subordinate);
  }
  if (function.config.express) {
    writer.Set("PortType", PortTypeText(function.config.express->portType));
    SetLink(*function.config.express, writer);
  }
  SetCapabilities(function.config, writer);
  SetRegions(function.regions, writer);
  SetKernelFacts(function, writer);
  const FunctionPlace& where = snapshot.GetResolution().places[place];
  writer.Set("Place", PlaceText(where.place));
  writer.Set("PlaceReason", where.reason);
  return writer.Take();
}

}  // namespace

std::vector<Properties> FunctionInstances(const Snapshot& snapshot) {
  KindNames names(snapshot.GetNames());
  std::vector<Properties> instances;
  for (std::size_t i = 0; i < snapshot.GetMachine().functions.size(); ++i) {
    instances.push_back(InstanceOf(snapshot, i, names));
  }
  return instances;
}

}  // namespace topology
