// SPDX-License-Identifier: Apache-2.0
#include "host/views/devices_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;

std::vector<std::string> Devices(const std::vector<std::string>& columns, MachineModel machine) {
  OutputToText output;
  WriteDevicesTable(output.Get(), machine, columns, {});
  return LinesOf(output.Text());
}

MachineModel MachineOfDevices() { return ReadMachine(*MakeTopologyRepository()); }

TEST(DevicesView, ListsEveryFunctionByAddress) {
  const auto lines = Devices({}, MachineOfDevices());
  ASSERT_EQ(lines.size(), 13U);
  EXPECT_THAT(lines[0], testing::MatchesRegex("ADDRESS +CLASS +NAME +DRIVER +LINK +SLOT"));
  EXPECT_EQ(lines[6].substr(0, 7), "01:00.0");
  for (const char* part : {"VGA compatible controller", "NVIDIA GP104 [GeForce GTX 1080]",
                           "nouveau", "x8 of x16, 8 of 16 GT/s", "PCIEX16_1"}) {
    EXPECT_THAT(lines[6], HasSubstr(part));
  }
  EXPECT_THAT(lines[8], HasSubstr("PCIEX4_1 or PCIEX4_2"));
  EXPECT_THAT(lines[12], testing::EndsWith("unknown"));
}

TEST(DevicesView, ShowsTheColumnsThatAreAskedFor) {
  const auto lines = Devices({"id", "address"}, MachineOfDevices());
  EXPECT_EQ(lines[0], "ID         ADDRESS");
  EXPECT_EQ(lines[1], "8086:191f  00:00.0");
}

TEST(DevicesView, ShowsDomainsAndNodesWhereThereAreSeveral) {
  MachineModel machine = MachineOfDevices();
  machine.functions.back().address.domain = 0x10000;
  machine.functions.front().numaNode = 0;
  machine.functions.back().numaNode = 1;
  const auto lines = Devices({}, machine);
  EXPECT_THAT(lines[0], HasSubstr("NUMA"));
  EXPECT_THAT(lines[1], testing::StartsWith("0000:00:00.0 "));
  EXPECT_THAT(lines[12], testing::StartsWith("10000:04:00.0"));
}

TEST(DevicesView, WritesJson) {
  OutputToText output;
  WriteDevicesJson(output.Get(), MachineOfDevices());
  const auto functions = nlohmann::json::parse(output.Text())["functions"];
  ASSERT_EQ(functions.size(), 12U);
  EXPECT_EQ(functions[0]["address"], "0000:00:00.0");
  EXPECT_EQ(functions[5]["class"]["text"], "VGA compatible controller");
  EXPECT_EQ(functions[5]["link"]["maxWidth"], 16);
}

TEST(DevicesView, WritesAllColumnsAsCsv) {
  OutputToText output;
  WriteDevicesCsv(output.Get(), MachineOfDevices(), {});
  const auto lines = LinesOf(output.Text());
  ASSERT_EQ(lines.size(), 13U);
  EXPECT_EQ(lines[0],
            "\"address\",\"id\",\"class\",\"name\",\"driver\",\"link\",\"numa\",\"slot\"\r");
  EXPECT_EQ(lines[6],
            "\"0000:01:00.0\",\"10de:1b80\",\"VGA compatible controller\","
            "\"NVIDIA GP104 [GeForce GTX 1080]\",\"nouveau\",\"x8 of x16, 8 of 16 GT/s\",,"
            "\"PCIEX16_1\"\r");
}

TEST(DevicesView, WritesTheChosenColumnsAsCsv) {
  OutputToText output;
  WriteDevicesCsv(output.Get(), MachineOfDevices(), {"slot", "address"});
  EXPECT_EQ(LinesOf(output.Text())[6], "\"PCIEX16_1\",\"0000:01:00.0\"\r");
}

TEST(DevicesView, WritesALineOfJsonForEachFunction) {
  OutputToText json;
  WriteDevicesJson(json.Get(), MachineOfDevices());
  OutputToText output;
  WriteDevicesJsonLines(output.Get(), MachineOfDevices(), {"box", {"a UUID", ""}, "a time"});
  const auto lines = LinesOf(output.Text());
  ASSERT_EQ(lines.size(), 12U);
  auto expected = nlohmann::json::parse(json.Text())["functions"][5];
  expected.update({{"system", "box"}, {"systemUUID", "a UUID"}, {"collected", "a time"}});
  EXPECT_EQ(nlohmann::json::parse(lines[5]), expected);
  EXPECT_THAT(lines[5], testing::StartsWith("{\"system\":\"box\",\"systemUUID\":\"a UUID\","
                                            "\"collected\":\"a time\",\"address\":"));
}

TEST(DevicesView, WritesYaml) {
  OutputToText output;
  WriteDevicesYaml(output.Get(), MachineOfDevices());
  EXPECT_THAT(output.Text(), HasSubstr("functions:\n  - address: \"0000:00:00.0\"\n"));
  EXPECT_THAT(output.Text(), HasSubstr("\n    vendorID: 32902\n"));
  EXPECT_THAT(output.Text(), HasSubstr("\n    link:\n      width: 8\n"));
}

}  // namespace
}  // namespace pciinfo
