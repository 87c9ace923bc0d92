// SPDX-License-Identifier: Apache-2.0
#include "tests/topology/made_machine.h"

#include <algorithm>

namespace topology {

Address At(const std::string& text) { return ParseAddress(text).value(); }

Function& MadeMachine::Add(const std::string& address, std::uint16_t classCode) {
  Function function;
  function.address = At(address);
  function.config.classCode = std::uint32_t{classCode} << 8;
  function.config.capabilitiesKnown = true;
  auto& functions = machine_.functions;
  const auto place = std::upper_bound(
      functions.begin(), functions.end(), function,
      [](const Function& left, const Function& right) { return left.address < right.address; });
  return *functions.insert(place, function);
}

Function& MadeMachine::Card(const std::string& address, std::uint16_t classCode) {
  return Add(address, classCode);
}

Function& MadeMachine::Port(const std::string& address, unsigned secondary, unsigned subordinate,
                            int physicalNumber, PortType type) {
  Function& port = Bridge(address, secondary, subordinate);
  Express express;
  express.portType = static_cast<std::uint8_t>(type);
  if (physicalNumber >= 0 && express.LeadsToLink()) {
    express.slot = PortSlot{static_cast<std::uint16_t>(physicalNumber), false, false, true};
  }
  port.config.express = express;
  return port;
}

Function& MadeMachine::Bridge(const std::string& address, unsigned secondary,
                              unsigned subordinate) {
  Function& bridge = Add(address, 0x0604);
  bridge.config.headerType = 1;
  bridge.config.bridge = BridgeBuses{bridge.address.bus, static_cast<std::uint8_t>(secondary),
                                     static_cast<std::uint8_t>(subordinate)};
  return bridge;
}

SlotRecord& MadeMachine::Record(const std::string& designation, const std::string& address,
                                unsigned id) {
  SlotRecord record;
  record.handle = static_cast<std::uint16_t>(0x0900 + machine_.slotRecords.size());
  record.designation = designation;
  record.type = 0xA5;
  record.usage = 4;
  record.id = static_cast<std::uint16_t>(id);
  if (!address.empty()) record.address = At(address);
  machine_.slotRecords.push_back(record);
  return machine_.slotRecords.back();
}

void MadeMachine::KernelSlotAt(const std::string& name, const std::string& device) {
  machine_.kernelSlots.push_back({name, ParseDeviceAddress(device).value()});
}

}  // namespace topology
