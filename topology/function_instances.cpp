// SPDX-License-Identifier: Apache-2.0
#include <array>

#include "topology/instances.h"
#include "topology/link_properties.h"
#include "topology/properties.h"

namespace topology {
namespace {

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

/// What the port at the other end of the function's link has and can do. A link that is slower or
/// narrower than both ends allow shows a bad contact or a setting.
void SetPortLink(const Express& port, PropertyWriter& writer) {
  writer.Set("PortMaxLinkTransferRate", RateOf(port.most));
  writer.Set("PortLinkTransferRate", RateOf(port.now));
  if (port.most.width != 0) {
    writer.Set("PortMaxLinkSpeed", SpeedText(port.most.speed));
    writer.Set("PortMaxLinkWidth", port.most.width);
  }
  if (port.now.width != 0) {
    writer.Set("PortLinkSpeed", SpeedText(port.now.speed));
    writer.Set("PortLinkWidth", port.now.width);
  }
}

void SetExpress(const Function& function, const Function* parent, PropertyWriter& writer) {
  if (!function.config.capabilitiesKnown) {
    writer.Set("CapabilitiesUnknownBecause",
               function.config.isRead
                   ? "only root may read more than the header of the configuration space"
                   : "the configuration space could not be read");
  }
  if (!function.config.express) return;
  const Express& express = *function.config.express;
  writer.Set("PortType", PortTypeText(express.portType));
  SetMaxLink(express, writer);
  SetLinkNow(express, writer);
  // The link of a root port or a downstream port is the one below it.
  if (express.LeadsToLink() || parent == nullptr || !parent->config.express) return;
  if (parent->config.express->LeadsToLink()) SetPortLink(*parent->config.express, writer);
}

void SetKernelFacts(const Function& function, PropertyWriter& writer) {
  writer.Set("Driver", function.driver);
  writer.Set("NumaNode", function.numaNode);
  writer.Set("FirmwareLabel", function.label);
  writer.Set("SlotUserNumber", function.slotUserNumber);
  if (function.physicalFunction) {
    writer.Set("PhysicalFunction", ToText(*function.physicalFunction));
  }
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
      if (!known->second[i].IsNull()) writer.Set(kProperties[i], known->second[i]);
    }
  }

 private:
  using Kind = std::array<std::uint32_t, 5>;
  using Values = std::array<NQZMVTQ20::TCIMValue, 6>;

  static NQZMVTQ20::TCIMValue ValueOf(std::string_view name) {
    return name.empty() ? NQZMVTQ20::TCIMValue() : NQZMVTQ20::TCIMValue(std::string(name));
  }

  Values LookUp(const ConfigFacts& config) const {
    Values values{ValueOf(names_.Vendor(config.vendor)),
                  ValueOf(names_.Device(config.vendor, config.device))};
    if (config.subsystemVendor && config.subsystemDevice) {
      values[2] = ValueOf(names_.Vendor(*config.subsystemVendor));
      values[3] = ValueOf(names_.Subsystem(config.vendor, config.device, *config.subsystemVendor,
                                           *config.subsystemDevice));
    }
    values[4] = ValueOf(names_.Class(config.classCode));
    values[5] = ValueOf(names_.ProgrammingInterface(config.classCode));
    return values;
  }

  const PciNames& names_;
  std::map<Kind, Values> known_;
};

void SetFunction(const Snapshot& snapshot, std::size_t place, KindNames& names,
                 PropertyWriter& writer) {
  const Function& function = snapshot.GetMachine().functions[place];
  writer.Set("Address", ToText(function.address));
  SetIdentity(function.config, writer);
  names.Set(function.config, writer);
  const auto parent = snapshot.GetTree().GetParent(place);
  if (parent) writer.Set("ParentPort", ToText(snapshot.GetTree().At(*parent).address));
  if (function.config.bridge) {
    writer.Set("SecondaryBus", function.config.bridge->secondary);
    writer.Set("SubordinateBus", function.config.bridge->subordinate);
  }
  SetExpress(function, parent ? &snapshot.GetTree().At(*parent) : nullptr, writer);
  SetKernelFacts(function, writer);
  const FunctionPlace& where = snapshot.GetResolution().places[place];
  writer.Set("Place", PlaceText(where.place));
  writer.Set("PlaceReason", where.reason);
}

}  // namespace

void CommitFunctions(const Snapshot& snapshot, NQZMVTQ20::ICIMClass& cimClass) {
  KindNames names(snapshot.GetNames());
  for (std::size_t i = 0; i < snapshot.GetMachine().functions.size(); ++i) {
    const auto instance = cimClass.CreateInstance({});
    PropertyWriter writer(*instance);
    SetFunction(snapshot, i, names, writer);
    instance->Commit({});
  }
}

}  // namespace topology
