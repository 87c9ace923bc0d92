// SPDX-License-Identifier: Apache-2.0
#include "host/interchange/redfish.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "host/interchange/redfish_values.h"
#include "tests/fakes/run_process.h"
#include "tests/host/collected_machine.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

using nlohmann::json;

json Document(const CollectedMachine& machine) { return json::parse(RedfishJson(machine).dump()); }

CollectedMachine MachineWithDetails() {
  CollectedMachine machine = MakeCollectedMachine();
  for (FunctionFacts& facts : machine.facts.functions) {
    facts.partNumber = "P-1";
    facts.productSerialNumber = "S-1";
    facts.systemDevices = {{"nvme", "nvme0", "", "A disk", "N-1", "1.2"}};
  }
  for (MachineSlot& slot : machine.facts.machine.slots) {
    slot.type = 0xB6;
    slot.width = 0x0D;
    slot.length = 4;
    slot.hotPlug = true;
  }
  return machine;
}

/// A machine whose every text is hard to write.
CollectedMachine HostileMachine() {
  CollectedMachine machine = MachineWithDetails();
  machine.stamp.systemName = "a/b c\"\xff";
  for (MachineFunction& function : machine.facts.machine.functions)
    function.deviceName = function.vendorName = "\x01\"\\\xff";
  for (MachineSlot& slot : machine.facts.machine.slots) slot.name += "\x01\"\\\xff";
  return machine;
}

constexpr const char* kCheck = R"(
import json, sys, jsonschema
validator = jsonschema.Draft202012Validator(json.load(open(sys.argv[1])))
for error in validator.iter_errors(json.load(open(sys.argv[2]))):
    print(error.json_path, error.message[:200])
)";

/// What a validator finds wrong with a document.
std::string Faults(const json& document) {
  const vtq::TemporaryDirectory directory;
  const std::string file = directory.GetPath() + "/document.json";
  std::ofstream(file) << document;
  const RunResult result =
      RunProcess({"/usr/bin/python3", "-c", kCheck, INTERCHANGE "/redfish.schema.json", file});
  return result.out + result.err;
}

TEST(Redfish, IsValid) {
  EXPECT_EQ(Faults(Document(MachineWithDetails())), "");
  EXPECT_EQ(Faults(Document(MakeCollectedMachine())), "");
  EXPECT_EQ(Faults(Document({})), "");
  EXPECT_EQ(Faults(Document(HostileMachine())), "");
}

TEST(Redfish, IsCheckedByASchemaThatRefusesOtherMembers) {
  json document = Document(MakeCollectedMachine());
  document["PCIeDevices"]["Members"][0]["Speed"] = 1;
  EXPECT_NE(Faults(document), "");
}

/// Gathers the URIs of the resources of a document, and of all that it refers to.
void Gather(const json& value, std::multiset<std::string>& resources,
            std::set<std::string>& targets) {
  if (value.is_object() && value.contains("@odata.id")) {
    targets.insert(value["@odata.id"]);
    if (value.contains("@odata.type")) resources.insert(value["@odata.id"]);
  }
  if (!value.is_structured()) return;
  for (const json& element : value) Gather(element, resources, targets);
}

TEST(Redfish, HasEveryResourceThatItRefersToOnce) {
  for (const CollectedMachine& machine : {MachineWithDetails(), HostileMachine()}) {
    std::multiset<std::string> resources;
    std::set<std::string> targets;
    Gather(Document(machine), resources, targets);
    EXPECT_THAT(targets, testing::ElementsAreArray(resources));
  }
}

/// The device with a function at an address of which the function is 0.
json DeviceAt(const json& document, const std::string& name) {
  for (const json& device : document["PCIeDevices"]["Members"]) {
    if (device["Id"] == name) return device;
  }
  return nullptr;
}

TEST(Redfish, TellsDevicesWithTheirFunctions) {
  const json device = DeviceAt(Document(MachineWithDetails()), "0000:01:00");
  EXPECT_EQ(device["Name"], "NVIDIA GP104 [GeForce GTX 1080]");
  EXPECT_EQ(device["DeviceType"], "MultiFunction");
  EXPECT_EQ(device["PartNumber"], "P-1");
  EXPECT_EQ(device["SerialNumber"], "S-1");
  EXPECT_EQ(device["FirmwareVersion"], "1.2");
  EXPECT_EQ(device["Slot"]["Location"]["PartLocation"]["ServiceLabel"], "PCIEX16_1");
  const json& function = device["PCIeFunctions"]["Members"][0];
  EXPECT_EQ(function["Id"], "0000:01:00.0");
  EXPECT_EQ(function["FunctionId"], 0);
  EXPECT_EQ(function["VendorId"], "0x10DE");
  EXPECT_EQ(function["DeviceId"], "0x1B80");
}

TEST(Redfish, TellsTheLinkOfADeviceButNotOfThePortAboveIt) {
  CollectedMachine machine = MakeCollectedMachine();
  MachineFunction& function = machine.facts.machine.functions.back();
  function.link = {8, "8.0 GT/s", 16, "16.0 GT/s"};
  const auto interface = [&] {
    return Document(machine)["PCIeDevices"]["Members"].back().value("PCIeInterface", json());
  };
  EXPECT_EQ(
      interface(),
      json({{"LanesInUse", 8}, {"MaxLanes", 16}, {"PCIeType", "Gen3"}, {"MaxPCIeType", "Gen4"}}));
  function.portType = "root port";
  EXPECT_EQ(interface(), json());
}

TEST(Redfish, PutsVirtualFunctionsIntoTheDeviceOfTheirPhysicalFunction) {
  CollectedMachine machine = MakeCollectedMachine();
  auto& functions = machine.facts.machine.functions;
  functions.back().physicalFunction = functions.front().address;
  const json members = Document(machine)["PCIeDevices"]["Members"];
  const json& last = members[0]["PCIeFunctions"]["Members"].back();
  EXPECT_EQ(last["Id"], FormatAddress(functions.back().address));
  EXPECT_EQ(last["FunctionType"], "Virtual");
  EXPECT_FALSE(last.contains("FunctionId"));
}

TEST(Redfish, TellsSlotsWithLinksToTheirDevices) {
  const json slot = Document(MachineWithDetails())["PCIeSlots"]["Slots"][0];
  EXPECT_EQ(slot["SlotType"], "FullLength");
  EXPECT_EQ(slot["PCIeType"], "Gen3");
  EXPECT_EQ(slot["Lanes"], 16);
  EXPECT_EQ(slot["HotPluggable"], true);
  EXPECT_EQ(slot["Status"]["State"], "Enabled");
  EXPECT_EQ(slot["Links"]["PCIeDevice"],
            json::array({{{"@odata.id", "/redfish/v1/Chassis/box/PCIeDevices/0000:01:00"}}}));
}

TEST(Redfish, TellsTheHealthThatCheckFinds) {
  CollectedMachine machine = MakeCollectedMachine();
  const auto statusAt = [&] { return DeviceAt(Document(machine), "0000:01:00")["Status"]; };
  EXPECT_EQ(statusAt()["Health"], "OK");
  machine.findings = {{"a-note", Severity::kNote, "", "", {{"", "", "", "", "0000:01:00.0"}}},
                      {"bad", Severity::kError, "", "", {{"", "", "", "", "0000:01:00.0"}}},
                      {"a-warning", Severity::kWarning, "", "", {{"PCIEX16_1", "", ""}}}};
  EXPECT_EQ(statusAt()["Health"], "Critical");
  EXPECT_EQ(Document(machine)["PCIeSlots"]["Slots"][0]["Status"]["Health"], "Warning");
  EXPECT_EQ(Document(machine)["Status"]["HealthRollup"], "Critical");
}

TEST(Redfish, CallsNothingWellOfAMachineThatWasNotReadWholly) {
  CollectedMachine machine = MakeCollectedMachine();
  machine.troubles = {"a trouble"};
  EXPECT_FALSE(DeviceAt(Document(machine), "0000:01:00")["Status"].contains("Health"));
  EXPECT_FALSE(Document(machine)["Status"].contains("HealthRollup"));
}

TEST(RedfishValues, NameGenerationsOfSpeeds) {
  for (const auto& [speed, type] : std::map<std::string, std::string>{{"2.5 GT/s", "Gen1"},
                                                                      {"5.0 GT/s", "Gen2"},
                                                                      {"8.0 GT/s", "Gen3"},
                                                                      {"16.0 GT/s", "Gen4"},
                                                                      {"32.0 GT/s", "Gen5"},
                                                                      {"64.0 GT/s", "Gen6"},
                                                                      {"", ""},
                                                                      {"x", ""},
                                                                      {"3 GT/s", ""}}) {
    EXPECT_EQ(PcieTypeOfSpeed(speed), type) << speed;
  }
}

TEST(RedfishValues, NameTheGenerationOfASlotByItsTypeElseByItsPort) {
  const auto typeOf = [](unsigned code) {
    MachineSlot slot;
    slot.type = code;
    slot.link.maxSpeed = "32.0 GT/s";
    return PcieTypeOf(slot);
  };
  EXPECT_EQ(typeOf(0xB0), "Gen2");
  EXPECT_EQ(typeOf(0xB6), "Gen3");
  EXPECT_EQ(typeOf(0xBD), "Gen4");
  EXPECT_EQ(typeOf(0x24), "Gen4");
  EXPECT_EQ(typeOf(0xAA), "Gen5");  // "PCI Express x16" of any generation
  EXPECT_EQ(typeOf(0xC4), "Gen5");
}

TEST(RedfishValues, NameSlotsByTheirTypeElseByTheirLength) {
  const auto typeOf = [](unsigned type, unsigned length) {
    MachineSlot slot;
    slot.type = type;
    slot.length = length;
    return SlotTypeOf(slot);
  };
  EXPECT_EQ(typeOf(0x17, 3), "M2");
  EXPECT_EQ(typeOf(0x20, 5), "U2");
  EXPECT_EQ(typeOf(0x26, 1), "OCP3Small");
  EXPECT_EQ(typeOf(0xB6, 3), "HalfLength");
  EXPECT_EQ(typeOf(0xB6, 2), "");
}

TEST(RedfishValues, LeaveOutWhatIsNotKnown) {
  EXPECT_EQ(ClassCodeOf({}), "");
  EXPECT_EQ(DeviceClassOf({}), "");
  EXPECT_EQ(HexWord({}), "");
  EXPECT_EQ(HexByte(0x0AU), "0x0A");
  MachineFunction function;
  function.baseClass = 2;
  function.subclass = 0;
  EXPECT_EQ(ClassCodeOf(function), "");
  function.programmingInterface = 0;
  EXPECT_EQ(ClassCodeOf(function), "0x020000");
  EXPECT_EQ(DeviceClassOf(function), "NetworkController");
  function.baseClass = 0x77;
  EXPECT_EQ(DeviceClassOf(function), "");
}

}  // namespace
}  // namespace pciinfo
