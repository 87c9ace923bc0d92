// SPDX-License-Identifier: Apache-2.0
#include "host/views/tree_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;

std::string Tree(const MachineModel& machine, const Terminal& terminal) {
  OutputToText output;
  WriteTree(output.Get(), MakePortTree(machine), machine, terminal);
  return output.Text();
}

TEST(TreeView, DrawsSlotsAtTheirPortsAndMarksNarrowLinks) {
  const std::string text = Tree(ReadMachine(*MakeTopologyRepository()), {});
  const auto lines = LinesOf(text);
  EXPECT_EQ(lines[0], "Bus 00");
  EXPECT_EQ(lines[1], "|- 00:00.0  Intel Host Bridge");
  EXPECT_EQ(lines[2], "|- 00:01.0 [PCIEX16_1]  bus 01  Intel Root Port");
  EXPECT_EQ(lines[3], "|  |- 01:00.0  link only x8 of x16  NVIDIA GP104 [GeForce GTX 1080]");
  EXPECT_THAT(text, HasSubstr("00:01.1 [PCIEX4_1 or PCIEX4_2]"));
  EXPECT_THAT(text, HasSubstr("Bus 04\n`- 04:00.0"));
}

TEST(TreeView, UsesUnicodeAndTheWidthOfTheTerminal) {
  Terminal terminal;
  terminal.unicode = true;
  terminal.width = 40;
  const std::string text = Tree(ReadMachine(*MakeTopologyRepository()), terminal);
  EXPECT_THAT(text, HasSubstr("\u251C\u2500 00:00.0"));
  EXPECT_THAT(text, HasSubstr("..."));
}

TEST(TreeView, WritesJson) {
  const MachineModel machine = ReadMachine(*MakeTopologyRepository());
  OutputToText output;
  WriteTreeJson(output.Get(), MakePortTree(machine), machine);
  const auto buses = nlohmann::json::parse(output.Text())["buses"];
  const auto& port = buses[0]["functions"][1];
  EXPECT_EQ(port["slots"][0], "PCIEX16_1");
  EXPECT_EQ(port["functions"][0]["address"], "0000:01:00.0");
  EXPECT_EQ(port["functions"][0]["narrowLink"], "x8 of x16");
  EXPECT_EQ(buses[1]["bus"], 4);
}

}  // namespace
}  // namespace pciinfo
