// SPDX-License-Identifier: Apache-2.0
#include "tests/topology/random_machine.h"

#include <algorithm>
#include <array>
#include <random>

namespace topology {
namespace {

class Maker {
 public:
  explicit Maker(const Choice& choose) : choose_(choose) {}

  Machine Make();

 private:
  std::uint8_t Byte(unsigned end) { return static_cast<std::uint8_t>(choose_(end)); }
  bool Often() { return choose_(4) != 0; }
  bool Seldom() { return choose_(8) == 0; }

  Address SomeAddress();
  /// Often that of a function, as in real records.
  Address NamedAddress(const Machine& machine);
  void MakeBridge(Function& function);
  Express SomeExpress(bool isBridge);
  Function SomeFunction();
  SlotRecord SomeRecord(const Machine& machine);

  const Choice& choose_;
};

Address Maker::SomeAddress() {
  constexpr std::array<std::uint32_t, 4> kDomains{0, 0, 1, 0x10000};
  Address address{kDomains[choose_(kDomains.size())], Byte(10), Byte(3), Byte(3)};
  if (Seldom()) address = {choose_(2) == 0 ? 0 : 0xFF00U, 0xFF, 31, 7};
  return address;
}

Address Maker::NamedAddress(const Machine& machine) {
  if (machine.functions.empty() || !Often()) return SomeAddress();
  const auto count = static_cast<unsigned>(machine.functions.size());
  Address address = machine.functions[choose_(count)].address;
  if (Seldom()) address.function = Byte(8);
  return address;
}

Express Maker::SomeExpress(bool isBridge) {
  constexpr std::array kBridges{PortType::kRootPort,           PortType::kRootPort,
                                PortType::kUpstreamPort,       PortType::kDownstreamPort,
                                PortType::kExpressToPciBridge, PortType::kPciToExpressBridge};
  constexpr std::array kOthers{PortType::kEndpoint, PortType::kEndpoint, PortType::kRootPort,
                               PortType::kIntegratedEndpoint};
  Express express;
  express.portType = static_cast<std::uint8_t>(isBridge ? kBridges[choose_(kBridges.size())]
                                                        : kOthers[choose_(kOthers.size())]);
  if (express.LeadsToLink() && Often()) {
    express.slot = PortSlot{Byte(6), choose_(2) == 0, choose_(2) == 0, choose_(2) == 0};
    if (Seldom()) express.slot->powerOn = choose_(2) == 0;
  }
  return express;
}

void Maker::MakeBridge(Function& function) {
  const std::uint8_t bus = function.address.bus;
  const auto secondary = static_cast<std::uint8_t>(Seldom() ? choose_(10) : bus + 1U + choose_(3));
  function.config.headerType = Seldom() ? 2 : 1;
  function.config.bridge =
      BridgeBuses{bus, secondary, static_cast<std::uint8_t>(secondary + choose_(4))};
}

Function Maker::SomeFunction() {
  constexpr std::array<std::uint32_t, 5> kClasses{0x020000, 0x010802, 0x060000, 0x088000, 0x030000};
  Function function;
  function.address = SomeAddress();
  function.config.classCode = kClasses[choose_(kClasses.size())];
  const bool isBridge = choose_(2) == 0;
  if (isBridge) MakeBridge(function);
  function.config.capabilitiesKnown = !Seldom();
  if (function.config.capabilitiesKnown && Often()) function.config.express = SomeExpress(isBridge);
  if (!Often()) function.slotUserNumber = choose_(9);
  return function;
}

SlotRecord Maker::SomeRecord(const Machine& machine) {
  SlotRecord record;
  record.handle = static_cast<std::uint16_t>(choose_(0x10000));
  record.designation = Seldom() ? "" : std::string(1, static_cast<char>('A' + choose_(6)));
  record.type = Seldom() ? 0x06 : 0xA5;
  record.usage = static_cast<std::uint8_t>(3 + choose_(2));
  record.id = Byte(6);
  if (Often()) record.address = NamedAddress(machine);
  for (unsigned peers = Seldom() ? choose_(4) : 0; peers > 0; --peers) {
    record.peers.push_back(NamedAddress(machine));
  }
  return record;
}

Machine Maker::Make() {
  Machine machine;
  for (unsigned count = choose_(40); count > 0; --count) {
    machine.functions.push_back(SomeFunction());
  }
  auto& functions = machine.functions;
  const auto isBefore = [](const Function& left, const Function& right) {
    return left.address < right.address;
  };
  const auto isSame = [](const Function& left, const Function& right) {
    return left.address == right.address;
  };
  std::stable_sort(functions.begin(), functions.end(), isBefore);
  functions.erase(std::unique(functions.begin(), functions.end(), isSame), functions.end());
  for (unsigned count = choose_(12); count > 0; --count) {
    machine.slotRecords.push_back(SomeRecord(machine));
  }
  for (unsigned count = choose_(4); count > 0; --count) {
    Address device = NamedAddress(machine);
    device.function = 0;
    machine.kernelSlots.push_back({std::to_string(choose_(6)), device});
    if (Often()) continue;
    machine.kernelSlots.back().power = choose_(2);
    machine.kernelSlots.back().adapter = choose_(2);
  }
  for (unsigned count = choose_(3); count > 0; --count) {
    machine.onBoardRecords.push_back({0x29, "LAN", Often(), NamedAddress(machine)});
  }
  if (Seldom()) machine.noRecordsBecause = "the SMBIOS tables can be read by root only";
  return machine;
}

}  // namespace

Machine MakeMachineBy(const Choice& choose) { return Maker(choose).Make(); }

Machine MakeRandomMachine(unsigned seed) {
  std::mt19937 random(seed);
  return MakeMachineBy([&random](unsigned end) { return static_cast<unsigned>(random() % end); });
}

}  // namespace topology
