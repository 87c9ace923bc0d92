// SPDX-License-Identifier: Apache-2.0
#include "framework/exception.h"
#include "tests/pci/pci_fixture.h"

using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;

class RawDataTest : public PciTest {
 protected:
  // The map for a command that prints `output`.
  TPropertyMap RawData(const std::string& output) {
    Fake().commands["lspci -xxxx"] = [output] { return output; };
    std::vector<TPropertyMap> maps;
    Collector().GetPciRawData(&maps, "lspci -xxxx");
    EXPECT_EQ(maps.size(), 1U);
    return maps.empty() ? TPropertyMap() : maps[0];
  }
};

TEST_F(RawDataTest, MapHoldsTheCommandAndItsOutputLineByLine) {
  const TPropertyMap map = RawData("00:00.0 A\n00: 86 80\n");
  ASSERT_EQ(map.size(), 2U);
  EXPECT_EQ(map.at("Command"), TCIMValue("lspci -xxxx"));
  EXPECT_EQ(map.at("RawResult").GetType().GetCode(), TCIMValue::TCIMType::kString);
  EXPECT_EQ(Texts(map.at("RawResult")), (Lines{"00:00.0 A", "00: 86 80"}));
}

TEST_F(RawDataTest, CommandRunsWithItsTimeLimitBetweenTheLogLines) {
  RawData("a\n");
  EXPECT_EQ(Fake().spawned, (std::vector<std::pair<std::string, int>>{{"lspci -xxxx", 300}}));
  EXPECT_EQ(Fake().log, (Lines{"3 Entering TPciDevInfo::GetPciRawData, cmd:lspci -xxxx",
                               "3 Exiting TPciDevInfo::GetPciRawData"}));
}

TEST_F(RawDataTest, EmptyLinesAreElements) {
  EXPECT_EQ(Texts(RawData("a\n\nb\n").at("RawResult")), (Lines{"a", "", "b"}));
}

TEST_F(RawDataTest, TextBehindTheLastLineEndIsDropped) {
  EXPECT_EQ(Texts(RawData("a\nb").at("RawResult")), Lines{"a"});
}

TEST_F(RawDataTest, OutputWithoutLineEndHasNoResultButStillOneMap) {
  for (const char* output : {"", "a"}) {
    const TPropertyMap map = RawData(output);
    EXPECT_EQ(map.size(), 1U) << output;
    EXPECT_EQ(map.count("RawResult"), 0U) << output;
    EXPECT_EQ(map.at("Command").GetString(), "lspci -xxxx");
  }
}

TEST_F(RawDataTest, LongListingKeepsEveryLine) {
  std::string output;
  for (int line = 0; line < 100000; ++line) output += std::to_string(line) + "\n";
  const TPropertyMap map = RawData(output);
  const TCIMValue::TArray& lines = map.at("RawResult").GetArray();
  ASSERT_EQ(lines.size(), 100000U);
  EXPECT_EQ(lines.front().GetString(), "0");
  EXPECT_EQ(lines.back().GetString(), "99999");
}

TEST_F(RawDataTest, FailingCommandAppendsNothingAndIsTheCallersMatter) {
  std::vector<TPropertyMap> maps;
  TPciDevInfo collector = Collector();
  EXPECT_THROW(collector.GetPciRawData(&maps, "lspci -vvv"), TVTQException);
  EXPECT_TRUE(maps.empty());
  EXPECT_EQ(Fake().log, Lines{"3 Entering TPciDevInfo::GetPciRawData, cmd:lspci -vvv"});
}

TEST_F(RawDataTest, MapIsAppended) {
  Fake().commands["some command"] = [] { return std::string("x\n"); };
  std::vector<TPropertyMap> maps(1);
  Collector().GetPciRawData(&maps, "some command");
  ASSERT_EQ(maps.size(), 2U);
  EXPECT_TRUE(maps[0].empty());
  EXPECT_EQ(Text(maps[1], "Command"), "some command");
}
