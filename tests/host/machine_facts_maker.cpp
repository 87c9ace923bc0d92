// SPDX-License-Identifier: Apache-2.0
#include "tests/host/machine_facts_maker.h"

#include "host/check/machine_checks.h"

using namespace pciinfo;

namespace {

constexpr unsigned kInUse = 4;
constexpr unsigned kAvailable = 3;

MachineFunction FunctionAt(const PciAddress& address, unsigned classCode, const Link& link) {
  MachineFunction function;
  function.address = {0, address};
  function.vendorId = 0x8086;
  function.deviceId = 0x1533;
  function.baseClass = classCode >> 8U;
  function.subclass = classCode & 0xFFU;
  function.revision = 1;
  function.headerType = 0;
  function.link = link;
  function.place = FunctionPlace::kOnBoard;
  return function;
}

MachineFunction Port(const PciAddress& address) {
  MachineFunction port = FunctionAt(address, 0x0604, {8, "8.0 GT/s", 16, "16.0 GT/s"});
  port.headerType = 1;
  port.portType = "root port";
  port.driver = "pcieport";
  return port;
}

MachineFunction Card(const PciAddress& address, unsigned classCode, const Link& link,
                     std::size_t port) {
  MachineFunction card = FunctionAt(address, classCode, link);
  card.parentPort = DomainAddress{0, {0, static_cast<unsigned>(port) + 1, 0}};
  card.driver = "adriver";
  card.place = FunctionPlace::kSlot;
  card.slot = port;
  return card;
}

MachineSlot SlotAt(unsigned id, unsigned usage) {
  MachineSlot slot;
  slot.name = "SLOT" + std::to_string(id);
  slot.source = "SMBIOS record";
  slot.state = usage == kInUse ? SlotState::kOccupied : SlotState::kEmpty;
  slot.recordHandle = id;
  slot.id = id;
  slot.type = 0xA5;   // PCI Express
  slot.width = 0x0D;  // x16
  slot.usage = usage;
  return slot;
}

}  // namespace

MachineFacts MakeHealthyMachine() {
  MachineFacts facts;
  MachineModel& machine = facts.machine;
  machine.functions = {Port({0, 1, 0}), Port({0, 2, 0}), FunctionAt({0, 31, 4}, 0x0C05, {}),
                       Card({1, 0, 0}, 0x0200, {8, "8.0 GT/s", 8, "8.0 GT/s"}, 0),
                       Card({2, 0, 0}, 0x0300, {16, "2.5 GT/s", 16, "16.0 GT/s"}, 1)};
  machine.slots = {SlotAt(1, kInUse), SlotAt(2, kInUse), SlotAt(3, kAvailable)};
  machine.slots[kSlot1].ports = {"0000:00:01.0"};
  machine.slots[kSlot1].functions = {kNetwork};
  machine.slots[kSlot2].ports = {"0000:00:02.0"};
  machine.slots[kSlot2].functions = {kGraphics};
  facts.functions.resize(machine.functions.size());
  facts.functions[kSmbus].modules = {"i2c_i801"};
  FunctionFacts& network = facts.functions[kNetwork];
  network.corrected.total = network.nonFatal.total = network.fatal.total = 0;
  network.powerState = "D0";
  network.modules = {"igb"};
  network.regions = {{0, 0xFE000000, 0x1000, "memory"}, {6, 0, 0x1000, "expansion ROM"}};
  return facts;
}

std::vector<std::string> FoundBy(const std::string& code, const MachineFacts& facts) {
  for (const MachineCheck& check : MachineChecks()) {
    if (check.code != code) continue;
    std::vector<std::string> found;
    for (const AffectedObject& object : check.find(facts)) {
      found.push_back(object.object + ": " + object.detail);
    }
    return found;
  }
  return {"no such check"};
}

std::vector<std::string> CodesOf(const MachineFacts& facts) {
  std::vector<std::string> codes;
  for (const CheckFinding& finding : FindWith(MachineChecks(), facts)) {
    codes.emplace_back(finding.code);
  }
  return codes;
}
