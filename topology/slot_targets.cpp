// SPDX-License-Identifier: Apache-2.0
#include "topology/slot_targets.h"

#include <linux/pci_regs.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace topology {
namespace {

std::string NameOf(const BusTree& tree, std::size_t function) {
  return ToText(tree.At(function).address);
}

Target None(std::string why) {
  Target target;
  target.evidence = std::move(why);
  return target;
}

Target Port(std::size_t port, std::string evidence, Certainty certainty = Certainty::kCertain) {
  Target target;
  target.kind = Target::Kind::kPort;
  target.port = port;
  target.certainty = certainty;
  target.evidence = std::move(evidence);
  return target;
}

Target Device(Address device, std::string evidence, Certainty certainty = Certainty::kCertain) {
  device.function = 0;
  Target target;
  target.kind = Target::Kind::kDevice;
  target.device = device;
  target.certainty = certainty;
  target.evidence = std::move(evidence);
  return target;
}

bool Is(const Function& function, PortType type) {
  return function.config.express && function.config.express->Is(type);
}

Target TargetOnRootBus(const BusTree& tree, std::size_t function, const std::string& names) {
  const Function& named = tree.At(function);
  if (IsChipsetClass(named)) return None(names + ", a part of the chip set on a root bus");
  return Device(named.address, names + " on a root bus");
}

/// The record names something on the bus that `bridge` leads to.
Target TargetBehind(const BusTree& tree, std::size_t bridge, const Address& address,
                    const std::string& names) {
  if (LeadsToOneDevice(tree, bridge)) {
    return Port(bridge, names + " behind port " + NameOf(tree, bridge));
  }
  // On the bus inside a switch stand its downstream ports, which records name by themselves.
  if (Is(tree.At(bridge), PortType::kUpstreamPort)) {
    return None(names + " inside the switch " + NameOf(tree, bridge));
  }
  return Device(address, names + " on the conventional bus behind " + NameOf(tree, bridge));
}

Target TargetOfFunction(const BusTree& tree, std::size_t function, const std::string& source) {
  const std::string name = NameOf(tree, function);
  if (IsPort(tree, function)) return Port(function, source + " names port " + name);
  const std::string names = source + " names " + name;
  if (const auto parent = tree.GetParent(function)) {
    return TargetBehind(tree, *parent, tree.At(function).address, names);
  }
  return TargetOnRootBus(tree, function, names);
}

/// The device exists, but not with this function number: firmware counts functions that a card does
/// not show.
Target TargetOfOtherFunction(const BusTree& tree, std::size_t first, const Address& address,
                             const std::string& names) {
  if (const auto parent = tree.GetParent(first)) {
    return TargetBehind(tree, *parent, address, names + ", a missing function of the device");
  }
  // Ports of a chip set are renumbered when others are hidden, so the number tells nothing.
  if (tree.At(first).config.bridge || IsChipsetClass(tree.At(first))) {
    return None(names + ", a missing function of the chip set");
  }
  Target target = TargetOnRootBus(tree, first, names + ", a missing function of the device");
  target.certainty = Certainty::kLikely;
  return target;
}

Target TargetInDomain(const BusTree& tree, const Address& address, const std::string& source) {
  if (const auto function = tree.Find(address)) return TargetOfFunction(tree, *function, source);
  const std::string names = source + " names " + ToText(address);
  const auto [first, last] = tree.FindDevice(address);
  if (first != last) return TargetOfOtherFunction(tree, first, address, names);
  if (const auto bridge = tree.FindBridgeTo(address.domain, address.bus)) {
    return TargetBehind(tree, *bridge, address, names + ", where no function answers,");
  }
  return None(names + ", which does not exist, and no port leads to its bus");
}

/// Whether the record is of a conventional PCI or PCI-X slot (DSP0134, 7.10.1).
bool IsConventional(const SlotRecord& record) {
  constexpr std::array<std::uint8_t, 3> kTypes{0x06, 0x0E, 0x12};  // PCI, PCI 66 MHz, PCI-X
  return std::find(kTypes.begin(), kTypes.end(), record.type) != kTypes.end();
}

/// The bridge to a conventional bus that stands on the link below `port`, if there is one.
std::optional<std::size_t> ConventionalBridgeBehind(const BusTree& tree, std::size_t port) {
  for (const std::size_t child : tree.GetChildren(port)) {
    if (Is(tree.At(child), PortType::kExpressToPciBridge)) return child;
  }
  return std::nullopt;
}

}  // namespace

bool Target::IsSamePlace(const Target& other) const {
  if (kind != other.kind) return false;
  return kind == Kind::kPort ? port == other.port : device == other.device;
}

bool IsChipsetClass(const Function& function) {
  constexpr std::array<std::uint8_t, 5> kBaseClasses{0x05, 0x06, 0x08, 0x0B, 0x11};
  constexpr std::uint16_t kSmBus = 0x0C05;
  const std::uint8_t base = function.config.BaseClass();
  return std::find(kBaseClasses.begin(), kBaseClasses.end(), base) != kBaseClasses.end() ||
         function.config.Class() == kSmBus;
}

bool IsRootComplexBus(const BusTree& tree, const Address& address) {
  const auto [first, last] = tree.FindBus(address.domain, address.bus);
  for (std::size_t i = first; i < last; ++i) {
    const Function& function = tree.At(i);
    if (Is(function, PortType::kRootPort) || Is(function, PortType::kIntegratedEndpoint) ||
        Is(function, PortType::kEventCollector)) {
      return true;
    }
  }
  return false;
}

namespace {

/// A card of PCI Express sits behind a port, not on the bus of the root complex.
void RefuseRootComplex(const BusTree& tree, Target& target) {
  if (target.kind != Target::Kind::kDevice) return;
  const auto [first, last] = tree.FindDevice(target.device);
  const bool isOnRootBus = first != last && !tree.GetParent(first);
  if (!isOnRootBus || !IsRootComplexBus(tree, target.device)) return;
  target = None(target.evidence + ", a part of the root complex");
}

}  // namespace

bool LeadsToOneDevice(const BusTree& tree, std::size_t function) {
  const Function& bridge = tree.At(function);
  if (!bridge.config.bridge) return false;
  if (bridge.config.capabilitiesKnown) {
    return bridge.config.express && (bridge.config.express->LeadsToLink() ||
                                     bridge.config.express->Is(PortType::kPciToExpressBridge));
  }
  const auto& children = tree.GetChildren(function);
  return std::all_of(children.begin(), children.end(),
                     [&](std::size_t child) { return tree.At(child).address.device == 0; });
}

bool IsPort(const BusTree& tree, std::size_t function) {
  const ConfigFacts& config = tree.At(function).config;
  if (!config.bridge) return false;
  const auto parent = tree.GetParent(function);
  // At the end of a link stands a card or a switch, whatever type it claims to be.
  if (parent && LeadsToOneDevice(tree, *parent)) return false;
  // What can be plugged in is behind a CardBus bridge, on whichever bus that is.
  if (config.headerType == PCI_HEADER_TYPE_CARDBUS) return true;
  return config.express ? config.express->LeadsToLink() : !parent;
}

Target TargetOfAddress(const BusTree& tree, const Address& address, const std::string& source) {
  Target target = TargetInDomain(tree, address, source);
  if (target.kind != Target::Kind::kNone || tree.HasDomain(address.domain)) return target;
  // Some firmware fills in the segment with anything. Zero is tried, and believed only where the
  // function is really there.
  Address inFirstDomain = address;
  inFirstDomain.domain = 0;
  if (!tree.Find(inFirstDomain)) return target;
  char segment[16];
  std::snprintf(segment, sizeof segment, "0x%04x", address.domain);
  target = TargetInDomain(tree, inFirstDomain,
                          source + " has the impossible segment " + segment + "; taken as 0, it");
  target.certainty = Certainty::kLikely;
  return target;
}

std::optional<std::uint64_t> NumberOf(const KernelSlot& slot) {
  std::uint64_t number = 0;
  const char* const end = slot.name.data() + slot.name.size();
  const auto [stop, error] = std::from_chars(slot.name.data(), end, number);
  if (error != std::errc() || (stop != end && *stop != '-')) return std::nullopt;
  return number;
}

namespace {

/// An ACPI slot may be given the port's own device. Ports that differ by the function number only
/// can be told apart then by the number that ACPI gives each of them.
Target PortOfKernelSlot(const BusTree& tree, const KernelSlot& slot,
                        const std::vector<std::size_t>& ports) {
  const std::string source = "kernel slot " + slot.name;
  std::vector<std::size_t> numbered;
  const auto number = NumberOf(slot);
  for (const std::size_t port : ports) {
    if (number && tree.At(port).slotUserNumber == number) numbered.push_back(port);
  }
  if (numbered.size() != 1) return None(source + " is a device with several ports");
  return Port(numbered.front(),
              source + " has the ACPI slot user number of port " + NameOf(tree, numbered.front()),
              Certainty::kLikely);
}

}  // namespace

Target TargetOfKernelSlot(const BusTree& tree, const KernelSlot& slot) {
  const std::string source = "kernel slot " + slot.name;
  const auto [first, last] = tree.FindDevice(slot.device);
  std::vector<std::size_t> ports;
  for (std::size_t i = first; i < last; ++i) {
    if (IsPort(tree, i)) ports.push_back(i);
  }
  if (ports.size() > 1) return PortOfKernelSlot(tree, slot, ports);
  if (!ports.empty())
    return Port(ports.front(), source + " is port " + NameOf(tree, ports.front()));
  const std::string is = source + " is " + ToText(slot.device);
  if (const auto bridge = tree.FindBridgeTo(slot.device.domain, slot.device.bus)) {
    return TargetBehind(tree, *bridge, slot.device, is);
  }
  if (first != last) {
    Target target = TargetOnRootBus(tree, first, is);
    RefuseRootComplex(tree, target);
    return target;
  }
  // The kernel knows the slots of a conventional root bus also while they are empty.
  const auto [busFirst, busLast] = tree.FindBus(slot.device.domain, slot.device.bus);
  if (busFirst == busLast || IsRootComplexBus(tree, slot.device)) {
    return None(is + ", which does not exist");
  }
  return Device(slot.device, is + " on a root bus");
}

namespace {

/// Some emulators number every device of their bus, and so the host bridge as well. That tells
/// nothing of slots.
bool IsNumberedThroughout(const BusTree& tree, const Address& address) {
  const auto [first, last] = tree.FindBus(address.domain, address.bus);
  for (std::size_t i = first; i < last; ++i) {
    if (tree.At(i).slotUserNumber && IsChipsetClass(tree.At(i))) return true;
  }
  return false;
}

}  // namespace

Target TargetOfUserNumber(const BusTree& tree, std::size_t function) {
  const Function& named = tree.At(function);
  const std::string source = "ACPI slot user number " + std::to_string(*named.slotUserNumber);
  Target target = TargetOfFunction(tree, function, source);
  RefuseRootComplex(tree, target);
  if (target.kind == Target::Kind::kDevice && !named.config.capabilitiesKnown) {
    return None(source + " names a function whose capabilities are not known");
  }
  if (target.kind == Target::Kind::kDevice && !tree.GetParent(function) &&
      IsNumberedThroughout(tree, named.address)) {
    return None(source + " is one of a bus whose chip set is numbered too");
  }
  target.certainty = Certainty::kLikely;
  return target;
}

std::string RecordText(const SlotRecord& record) {
  char text[32];
  std::snprintf(text, sizeof text, "SMBIOS record 0x%04x", record.handle);
  return text;
}

bool FitToRecord(const BusTree& tree, const SlotRecord& record, Target& target) {
  if (!IsConventional(record)) RefuseRootComplex(tree, target);
  if (!IsConventional(record) || target.kind != Target::Kind::kPort) return true;
  if (!LeadsToOneDevice(tree, target.port)) return true;
  const auto bridge = ConventionalBridgeBehind(tree, target.port);
  if (bridge) target.port = *bridge;
  return bridge.has_value();
}

}  // namespace topology
