// SPDX-License-Identifier: Apache-2.0
#include "host/views/slots_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/console/text.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

std::string Table(const MachineModel& machine, std::optional<std::size_t> width = {},
                  const std::vector<std::string>& columns = {}) {
  OutputToText output;
  Terminal terminal;
  terminal.width = width;
  WriteSlotsTable(output.Get(), machine, columns, terminal);
  return output.Text();
}

nlohmann::json Document(const MachineModel& machine) {
  OutputToText output;
  WriteSlotsJson(output.Get(), machine);
  return nlohmann::json::parse(output.Text());
}

MachineModel TopologyMachine() { return ReadMachine(*MakeTopologyRepository()); }

TEST(SlotsView, ShowsWhatSitsInASlotAndHowSureThatIs) {
  const std::string line = LinesOf(Table(TopologyMachine()))[1];
  for (const char* part : {"PCIEX16_1", "00:01.0", "x16", "x8 of x16, 8 GT/s", "in use", "certain",
                           "01:00.0-1", "NVIDIA GP104 [GeForce GTX 1080] + audio"}) {
    EXPECT_THAT(line, HasSubstr(part));
  }
}

TEST(SlotsView, GivesASharedPortToNoneOfItsSlots) {
  const std::string text = Table(TopologyMachine());
  EXPECT_THAT(text, HasSubstr("unknown: port 00:01.1 leads to 2 slots"));
  EXPECT_THAT(text, HasSubstr("In PCIEX4_1 or PCIEX4_2, which share port 00:01.1\n"));
  EXPECT_THAT(text, HasSubstr("02:00.0-1  Intel I350 Gigabit Network Connection, 1 virtual "));
}

TEST(SlotsView, SaysWhatIsNotKnown) {
  const std::string text = Table(TopologyMachine());
  EXPECT_THAT(text, HasSubstr("slot ID 5: the SMBIOS record gives no address"));
  EXPECT_THAT(text, Not(HasSubstr("To Be Filled")));
  EXPECT_THAT(text, HasSubstr("(port 00:1c.0)"));
  EXPECT_THAT(text, HasSubstr("Place unknown: it is on the conventional bus behind 0000:00:1e.0"));
  EXPECT_THAT(text, HasSubstr("M2_1: the firmware says in use, and none answers"));
}

TEST(SlotsView, FitsTheTerminalAndKeepsTheModel) {
  for (const std::size_t width : {60U, 80U, 100U, 160U}) {
    const std::string text = Table(TopologyMachine(), width);
    for (const std::string& line : LinesOf(text)) EXPECT_LE(DisplayWidth(line), width) << line;
    EXPECT_THAT(LinesOf(text)[1], testing::AllOf(HasSubstr("NVIDIA GP"), HasSubstr("audio")));
  }
}

TEST(SlotsView, ShowsFreeOrOccupiedSlotsOnly) {
  const auto free = Document(ChosenSlots(TopologyMachine(), SlotChoice::kFree));
  ASSERT_EQ(free["slots"].size(), 1U);
  EXPECT_EQ(free["slots"][0]["name"], "PCIEX1");
  const auto occupied = Document(ChosenSlots(TopologyMachine(), SlotChoice::kOccupied));
  ASSERT_EQ(occupied["slots"].size(), 1U);
  EXPECT_EQ(occupied["slots"][0]["functions"].size(), 2U);
  EXPECT_EQ(occupied["unnamed"].size(), 1U);
  EXPECT_TRUE(occupied["onBoard"].empty());
}

TEST(SlotsView, WritesJson) {
  const auto document = Document(TopologyMachine());
  EXPECT_EQ(document["slots"].size(), 6U);
  const auto& slot = document["slots"][0];
  EXPECT_EQ(slot["name"], "PCIEX16_1");
  EXPECT_EQ(slot["designation"], "PCIEX16_1");
  EXPECT_EQ(slot["state"], "occupied");
  const auto& function = slot["functions"][0];
  EXPECT_EQ(function["address"], "0000:01:00.0");
  EXPECT_EQ(function["id"], "10de:1b80");
  EXPECT_EQ(function["certainty"], "certain");
  EXPECT_EQ(function["evidence"], "0000:01:00.0 is behind the port");
  EXPECT_FALSE(document["slots"][4].contains("designation"));
  EXPECT_EQ(document["shared"][0]["functions"].size(), 3U);
  EXPECT_THAT(document["shared"][0]["slots"], Contains("PCIEX4_2"));
  EXPECT_EQ(document["unnamed"][0]["functions"][0]["address"], "0000:03:00.0");
  EXPECT_EQ(document["unknown"][0]["address"], "0000:04:00.0");
  EXPECT_EQ(document["conflicts"][0]["slot"], "M2_1");
  EXPECT_EQ(document["onBoard"].size(), 5U);
}

std::vector<std::string> CsvLines(const MachineModel& machine,
                                  const std::vector<std::string>& columns = {}) {
  OutputToText output;
  WriteSlotsCsv(output.Get(), machine, columns);
  return LinesOf(output.Text());
}

TEST(SlotsView, WritesALineOfCsvForEachFunctionInASlot) {
  const auto lines = CsvLines(TopologyMachine());
  ASSERT_EQ(lines.size(), 9U);
  EXPECT_EQ(lines[0],
            "\"slot\",\"firmware\",\"port\",\"width\",\"link\",\"state\",\"certainty\","
            "\"address\",\"card\"\r");
  EXPECT_THAT(lines[1], HasSubstr("\"in use\",\"certain\",\"0000:01:00.0\",\"NVIDIA GP104"));
  EXPECT_THAT(lines[2], HasSubstr("\"0000:01:00.1\""));
  EXPECT_THAT(lines[3], testing::EndsWith(",,,\r"));
}

TEST(SlotsView, ShowsTheColumnsThatAreAskedFor) {
  EXPECT_EQ(CsvLines(TopologyMachine(), {"address", "slot"})[1],
            "\"0000:01:00.0\",\"PCIEX16_1\"\r");
  const auto lines = LinesOf(Table(TopologyMachine(), 40, {"state", "slot"}));
  EXPECT_EQ(lines[0], "STATE    SLOT");
  EXPECT_EQ(lines[1], "in use   PCIEX16_1");
}

TEST(SlotsView, WritesYamlWithTheContentOfJson) {
  OutputToText output;
  WriteSlotsYaml(output.Get(), TopologyMachine());
  EXPECT_THAT(output.Text(), testing::StartsWith("slots:\n  - name: \"PCIEX16_1\"\n"));
  EXPECT_THAT(output.Text(), HasSubstr("\n    recordHandle: 1\n"));
  EXPECT_THAT(output.Text(), HasSubstr("\nshared:\n"));
}

TEST(SlotsView, WritesALineOfJsonForEachSlot) {
  OutputToText output;
  WriteSlotsJsonLines(output.Get(), TopologyMachine(), {"box", {}, ""});
  const auto lines = LinesOf(output.Text());
  ASSERT_EQ(lines.size(), 7U);
  auto expected = Document(TopologyMachine())["slots"][0];
  expected["system"] = "box";
  EXPECT_EQ(nlohmann::json::parse(lines[0]), expected);
}

TEST(SlotsView, OfAnEmptyMachineIsEmpty) {
  EXPECT_EQ(Table({}), "");
  EXPECT_EQ(Document({})["slots"], nlohmann::json::array());
}

}  // namespace
}  // namespace pciinfo
