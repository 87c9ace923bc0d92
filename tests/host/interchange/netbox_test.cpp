// SPDX-License-Identifier: Apache-2.0
#include "host/interchange/netbox.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/host/collected_machine.h"

namespace pciinfo {
namespace {

using nlohmann::json;

json Rows(const CollectedMachine& machine) { return json::parse(NetBoxJson(machine).dump()); }

CollectedMachine MachineWithInterfaces() {
  CollectedMachine machine = MakeCollectedMachine();
  machine.facts.functions[0].systemDevices = {
      {"network", "eth0", "52:54:00:12:34:56", "", "", ""},
      {"network", "ib0", "80:00:02:08:fe:80:00:00:00:00:00:00:e4:1d:2d:03:00:5f:c1:d1", "", "", ""},
      {"network", "dummy0", "00:00:00:00:00:00", "", "", ""},
      {"block", "sda", "", "", "", ""}};
  return machine;
}

/// What a row has that the bulk import of its type does not take.
std::vector<std::string> FaultsOf(const json& row, const json& type) {
  std::vector<std::string> faults;
  for (const auto& [name, length] : type["required"].items()) {
    if (!row.contains(name)) faults.push_back(name + " is missing");
  }
  for (const auto& [name, value] : row.items()) {
    const bool isRequired = type["required"].contains(name);
    if (!isRequired && !type["optional"].contains(name)) faults.push_back(name + " is no field");
    const std::size_t longest = type[isRequired ? "required" : "optional"].value(name, 0U);
    if (longest != 0 && value.get<std::string>().size() > longest)
      faults.push_back(name + " is long");
    if (value == "") faults.push_back(name + " is empty");
    const json choices = type.value("choices", json::object()).value(name, json::array({value}));
    if (std::find(choices.begin(), choices.end(), value) == choices.end())
      faults.push_back(name + " is no choice");
  }
  return faults;
}

void ExpectImportable(const json& rows) {
  const json types = json::parse(std::ifstream(INTERCHANGE "/netbox_fields.json"));
  for (const auto& [type, list] : rows.items()) {
    ASSERT_TRUE(types.contains(type)) << type;
    for (const json& row : list)
      EXPECT_THAT(FaultsOf(row, types[type]), testing::IsEmpty()) << type << ": " << row;
  }
}

TEST(NetBox, HasOnlyFieldsThatTheImportTakes) {
  ExpectImportable(Rows(MachineWithInterfaces()));
  ExpectImportable(Rows({}));
}

TEST(NetBox, KeepsTextsWithinTheirLengths) {
  CollectedMachine machine = MachineWithInterfaces();
  std::string text;
  for (int i = 0; i < 30; ++i) text += "Long name ";
  machine.stamp.systemName = machine.identity.maker = machine.identity.product = text;
  for (MachineFunction& function : machine.facts.machine.functions) {
    function.vendorName = function.deviceName = function.evidence = text;
    function.certainty = "likely";
  }
  for (FunctionFacts& facts : machine.facts.functions)
    facts.partNumber = facts.productSerialNumber = text;
  for (MachineSlot& slot : machine.facts.machine.slots) slot.name += text;
  ExpectImportable(Rows(machine));
  EXPECT_FALSE(Rows(machine)["modules"].empty());
}

std::set<json> ValuesOf(const json& rows, const char* name) {
  std::set<json> values;
  for (const json& row : rows) {
    if (row.contains(name)) values.insert(row[name]);
  }
  return values;
}

TEST(NetBox, RefersOnlyToItsOwnRows) {
  const json rows = Rows(MachineWithInterfaces());
  const auto refer = [&](const char* from, const char* field, const char* to, const char* key) {
    EXPECT_THAT(ValuesOf(rows[to], key), testing::IsSupersetOf(ValuesOf(rows[from], field)))
        << field;
  };
  refer("device_types", "manufacturer", "manufacturers", "name");
  refer("devices", "device_type", "device_types", "model");
  refer("module_bays", "device", "devices", "name");
  refer("module_types", "manufacturer", "manufacturers", "name");
  refer("modules", "module_bay", "module_bays", "name");
  refer("modules", "module_type", "module_types", "model");
  refer("interfaces", "device", "devices", "name");
  refer("mac_addresses", "interface", "interfaces", "name");
}

TEST(NetBox, TellsTheCardInASlotAsAModule) {
  CollectedMachine machine = MakeCollectedMachine();
  const DomainAddress card{0, {1, 0, 0}};
  const auto place = static_cast<std::size_t>(machine.facts.machine.Find(card) -
                                              machine.facts.machine.functions.data());
  machine.facts.functions[place].partNumber = "P-1";
  machine.facts.functions[place].serialNumber = "00-1b-21-ff-ff-a0-b1-c2";
  const json rows = Rows(machine);
  EXPECT_THAT(rows["modules"], testing::Contains(json({{"device", "box"},
                                                       {"module_bay", "PCIEX16_1"},
                                                       {"module_type", "GP104 [GeForce GTX 1080]"},
                                                       {"status", "active"},
                                                       {"serial", "00-1b-21-ff-ff-a0-b1-c2"}})));
  EXPECT_THAT(rows["module_types"], testing::Contains(json({{"manufacturer", "NVIDIA Corporation"},
                                                            {"model", "GP104 [GeForce GTX 1080]"},
                                                            {"part_number", "P-1"}})));
}

TEST(NetBox, TellsInterfacesWithTheirAddresses) {
  const json rows = Rows(MachineWithInterfaces());
  EXPECT_EQ(rows["interfaces"],
            json::array({{{"device", "box"},
                          {"name", "eth0"},
                          {"type", "other"},
                          {"mac_address", "52:54:00:12:34:56"}},
                         {{"device", "box"}, {"name", "ib0"}, {"type", "other"}},
                         {{"device", "box"}, {"name", "dummy0"}, {"type", "other"}}}));
  EXPECT_EQ(rows["mac_addresses"].size(), 1U);
}

TEST(NetBox, MakesSlugs) {
  CollectedMachine machine;
  machine.identity.maker = "Dell Inc.";
  EXPECT_EQ(Rows(machine)["manufacturers"],
            json::array({{{"name", "Dell Inc."}, {"slug", "dell-inc"}}}));
  machine.identity.maker = "\xC3\xA9";
  EXPECT_EQ(Rows(machine)["manufacturers"][0]["slug"], "unknown");
}

TEST(NetBox, HasNoRowsOfAMachineWithoutAName) {
  CollectedMachine machine = MachineWithInterfaces();
  machine.stamp.systemName = "";
  const json rows = Rows(machine);
  for (const char* type : {"devices", "module_bays", "modules", "interfaces", "mac_addresses"})
    EXPECT_TRUE(rows[type].empty()) << type;
}

}  // namespace
}  // namespace pciinfo
