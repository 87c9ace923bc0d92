// SPDX-License-Identifier: Apache-2.0
#include "tests/host/plugins/fixed_topology.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "framework/cim_instance.h"
#include "framework/cim_namespace.h"

namespace fake {
namespace {

using namespace NQZMVTQ20;

using TopologyProperties = std::vector<std::pair<const char*, TCIMValue>>;

TCIMValue Byte(unsigned value) { return TCIMValue(static_cast<std::uint8_t>(value)); }
TCIMValue Word(unsigned value) { return TCIMValue(static_cast<std::uint16_t>(value)); }

TCIMValue TextList(const std::vector<std::string>& texts) {
  TCIMValue::TArray elements;
  for (const std::string& text : texts) elements.emplace_back(text);
  const auto count = static_cast<std::uint32_t>(elements.size());
  return TCIMValue(TCIMValue::TCIMType(TCIMValue::TCIMType::kString), count, std::move(elements));
}

void Create(ICIMClass& cimClass, const TopologyProperties& properties) {
  const std::shared_ptr<ICIMInstance> instance = cimClass.CreateInstance({});
  for (const auto& [name, value] : properties) instance->SetProperty(name, value, {});
  instance->Commit({});
}

struct FixedFunction {
  const char* address;
  unsigned vendor;
  unsigned device;
  unsigned classCode;
  const char* vendorName;
  const char* deviceName;
  const char* parent;
  const char* place;
  const char* reason;
  TopologyProperties more = {};
};

TopologyProperties PortProperties(const char* type, unsigned bus, unsigned width) {
  return {{"HeaderType", Byte(1)},        {"PortType", TCIMValue(type)},
          {"SecondaryBus", Byte(bus)},    {"SubordinateBus", Byte(bus)},
          {"LinkWidth", Byte(width / 2)}, {"LinkSpeed", TCIMValue("8.0 GT/s")},
          {"MaxLinkWidth", Byte(width)},  {"MaxLinkSpeed", TCIMValue("8.0 GT/s")}};
}

std::vector<FixedFunction> FixedFunctions() {
  const char* intel = "Intel Corporation";
  const char* root = "it is on a root bus";
  const char* shared = "SMBIOS record 0x0002 names port 0000:00:01.1, and so does 1 other slot";
  const TopologyProperties link = {{"LinkWidth", Byte(8)},
                                   {"LinkSpeed", TCIMValue("8.0 GT/s")},
                                   {"MaxLinkWidth", Byte(16)},
                                   {"MaxLinkSpeed", TCIMValue("16.0 GT/s")},
                                   {"PortType", TCIMValue("endpoint")},
                                   {"Driver", TCIMValue("nouveau")}};
  return {
      // Not in the order of their addresses.
      {"0000:01:00.0", 0x10de, 0x1b80, 0x030000, "NVIDIA Corporation", "GP104 [GeForce GTX 1080]",
       "0000:00:01.0", "slot", "named", link},
      {"0000:01:00.1", 0x10de, 0x10f0, 0x040300, "NVIDIA Corporation", "GP104 HD Audio Controller",
       "0000:00:01.0", "slot", "named"},
      {"0000:00:00.0", 0x8086, 0x191f, 0x060000, intel, "Host Bridge", "", "on board", root},
      {"0000:00:01.0", 0x8086, 0x1901, 0x060400, intel, "Root Port", "", "on board", root,
       PortProperties("root port", 1, 16)},
      {"0000:00:01.1", 0x8086, 0x1905, 0x060400, intel, "Root Port", "", "on board", root,
       PortProperties("root port", 2, 8)},
      {"0000:00:1c.0", 0x8086, 0xa110, 0x060400, intel, "Root Port", "", "on board", root,
       PortProperties("root port", 3, 4)},
      {"0000:00:1f.3", 0x8086, 0xa170, 0x040300, intel, "Fa\xe7onn\xe9 Audio", "", "on board",
       root},
      {"0000:02:00.0", 0x8086, 0x1521, 0x020000, intel, "I350 Gigabit Network Connection",
       "0000:00:01.1", "one of several slots", shared},
      {"0000:02:00.1", 0x8086, 0x1521, 0x020000, intel, "I350 Gigabit Network Connection",
       "0000:00:01.1", "one of several slots", shared},
      {"0000:02:10.0",
       0x8086,
       0x1520,
       0x020000,
       intel,
       "I350 Virtual Function",
       "0000:00:01.1",
       "one of several slots",
       shared,
       {{"PhysicalFunction", TCIMValue("0000:02:00.0")}}},
      {"0000:03:00.0", 0x144d, 0xa80a, 0x010802, "Samsung Electronics Co Ltd", "", "0000:00:1c.0",
       "slot without a name", "port 0000:00:1c.0 says that it leads to a slot"},
      {"0000:04:00.0", 0x1234, 0x5678, 0x020000, "", "", "", "unknown",
       "it is on the conventional bus behind 0000:00:1e.0"},
  };
}

void MakeFixedFunctions(ICIMClass& cimClass) {
  for (const FixedFunction& function : FixedFunctions()) {
    TopologyProperties properties = {{"Address", TCIMValue(function.address)},
                                     {"VendorID", Word(function.vendor)},
                                     {"DeviceID", Word(function.device)},
                                     {"BaseClass", Byte(function.classCode >> 16)},
                                     {"Subclass", Byte(function.classCode >> 8 & 0xFF)},
                                     {"ProgrammingInterface", Byte(function.classCode & 0xFF)},
                                     {"VendorName", TCIMValue(function.vendorName)},
                                     {"DeviceName", TCIMValue(function.deviceName)},
                                     {"Place", TCIMValue(function.place)},
                                     {"PlaceReason", TCIMValue(function.reason)}};
    if (*function.parent != '\0') properties.emplace_back("ParentPort", TCIMValue(function.parent));
    properties.insert(properties.end(), function.more.begin(), function.more.end());
    Create(cimClass, properties);
  }
}

TopologyProperties RecordProperties(const char* name, const char* state, unsigned id,
                                    unsigned usage) {
  return {{"Name", TCIMValue(name)},
          {"Source", TCIMValue("SMBIOS record")},
          {"State", TCIMValue(state)},
          {"SlotID", Word(id)},
          {"SlotType", Byte(0xb6)},
          {"SlotDataBusWidth", Byte(0x0d)},
          {"FirmwareUsage", Byte(usage)},
          {"RecordHandle", Word(id)},
          {"SupportsHotPlug", TCIMValue(false)}};
}

void AddPort(TopologyProperties& slot, const char* port) {
  slot.emplace_back("FirmwareAddress", TCIMValue(port));
  slot.emplace_back("Leads", TextList({port}));
}

void MakeFixedSlots(ICIMClass& cimClass) {
  TopologyProperties graphics = RecordProperties("PCIEX16_1", "occupied", 1, 4);
  AddPort(graphics, "0000:00:01.0");
  graphics.emplace_back("LinkWidth", Byte(8));
  graphics.emplace_back("LinkSpeed", TCIMValue("8.0 GT/s"));
  graphics.emplace_back("MaxLinkWidth", Byte(16));
  graphics.emplace_back("MaxLinkSpeed", TCIMValue("8.0 GT/s"));
  Create(cimClass, graphics);
  for (const auto& [name, id] : {std::pair("PCIEX4_1", 2U), std::pair("PCIEX4_2", 3U)}) {
    TopologyProperties shared = RecordProperties(name, "unknown", id, 4);
    AddPort(shared, "0000:00:01.1");
    Create(cimClass, shared);
  }
  Create(cimClass, RecordProperties("PCIEX1", "empty", 4, 3));
  TopologyProperties nowhere = RecordProperties("To Be Filled By O.E.M.", "unknown", 5, 3);
  nowhere.emplace_back("LeadsNowhereBecause", TCIMValue("SMBIOS record 0x0005 gives no address"));
  Create(cimClass, nowhere);
  TopologyProperties doubtful = RecordProperties("M2_1", "unknown", 6, 4);
  doubtful.emplace_back("Conflicts", TextList({"the firmware says in use, and none answers"}));
  Create(cimClass, doubtful);
  Create(cimClass, {{"Name", TCIMValue("Port 0000:00:1c.0")},
                    {"Source", TCIMValue("port")},
                    {"State", TCIMValue("occupied")},
                    {"Leads", TextList({"0000:00:1c.0"})}});
}

TCIMValue ReferenceTo(ICIMClass& cimClass, const char* className, const char* key,
                      const char* value) {
  return TCIMValue(
      TCIMReference(cimClass.GetNamespace({})->GetName({}), className, {{key, TCIMValue(value)}}));
}

void Associate(ICIMClass& cimClass, const char* slot, const char* function, const char* certainty) {
  Create(cimClass, {{"Antecedent", ReferenceTo(cimClass, "VTQ_PCISlot", "Name", slot)},
                    {"Dependent", ReferenceTo(cimClass, "VTQ_PCIFunction", "Address", function)},
                    {"Certainty", TCIMValue(certainty)},
                    {"Evidence", TCIMValue(std::string(function) + " is behind the port")}});
}

void MakeFixedOccupants(ICIMClass& cimClass) {
  Associate(cimClass, "PCIEX16_1", "0000:01:00.0", "certain");
  Associate(cimClass, "PCIEX16_1", "0000:01:00.1", "certain");
  Associate(cimClass, "Port 0000:00:1c.0", "0000:03:00.0", "likely");
}

}  // namespace

void MakeTopologyInstances(ICIMClass& cimClass) {
  const std::string name = cimClass.GetName({});
  if (name == "VTQ_PCIFunction") MakeFixedFunctions(cimClass);
  if (name == "VTQ_PCISlot") MakeFixedSlots(cimClass);
  if (name == "VTQ_PCIFunctionInSlot") MakeFixedOccupants(cimClass);
  if (name == "VTQ_PCISharedPort") {
    Create(cimClass, {{"Port", TCIMValue("0000:00:01.1")},
                      {"Slots", TextList({"PCIEX4_1", "PCIEX4_2"})},
                      {"Functions", TextList({"0000:02:00.0", "0000:02:00.1", "0000:02:10.0"})},
                      {"Evidence", TCIMValue("SMBIOS record 0x0002 names port 0000:00:01.1")}});
  }
  if (name == "VTQ_PCIFunctionDetails") {
    Create(cimClass, {{"Address", TCIMValue("0000:02:00.0")},
                      {"NetworkInterfaces", TextList({"eth0"})},
                      {"InterruptMode", TCIMValue("MSI-X")}});
  }
}

}  // namespace fake
