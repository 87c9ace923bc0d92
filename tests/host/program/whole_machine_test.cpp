// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/record/machine_record.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

TEST(WholeMachine, IsOneLineThatCanBeReadBack) {
  const RunResult result = RunFake("fixed", {"--format", "jsonl"});
  EXPECT_EQ(result.status, 0) << result.err;
  ASSERT_THAT(LinesOf(result.out), SizeIs(1));
  const MachineRecord record = ParseRecord(result.out);
  const json overview = json::parse(RunFake("fixed", {"--format", "json"}).out);
  EXPECT_EQ(record.name, overview["system"]);
  EXPECT_EQ(record.functions.size(), overview["counts"]["functions"]);
  EXPECT_EQ(record.version, PCIINFO_VERSION);
  EXPECT_THAT(record.collected, SizeIs(20));
}

TEST(WholeMachine, HasAllThatTheOverviewTells) {
  const json line = json::parse(RunFake("fixed", {"--format", "jsonl"}).out);
  const json overview = json::parse(RunFake("fixed", {"--format", "json"}).out);
  for (const auto& [name, value] : overview.items()) {
    ASSERT_TRUE(line.contains(name)) << name;
    EXPECT_EQ(line[name].type(), value.type()) << name;
  }
}

TEST(WholeMachine, TellsInEachLineWhichMachineItIs) {
  for (const char* command : {"devices", "slots", "instances"}) {
    const RunResult result = RunFake("fixed", {command, "--format", "jsonl"});
    ASSERT_FALSE(result.out.empty()) << command;
    for (const std::string& line : LinesOf(result.out)) {
      EXPECT_THAT(line, StartsWith("{\"system\":\"")) << command;
      EXPECT_THAT(json::parse(line)["collected"].get<std::string>(), SizeIs(20)) << command;
    }
  }
}

TEST(WholeMachine, TellsTroublesAndFails) {
  const RunResult result = RunFake("grumbling", {"--format", "jsonl"});
  EXPECT_EQ(result.status, 1);
  EXPECT_FALSE(ParseRecord(result.out).troubles.empty());
}

TEST(WholeMachine, IsWrittenForOtherSystems) {
  const json redfish = json::parse(RunFake("fixed", {"--format", "redfish"}).out);
  EXPECT_THAT(redfish["@odata.type"].get<std::string>(), StartsWith("#Chassis."));
  const json netbox = json::parse(RunFake("fixed", {"--format", "netbox"}).out);
  EXPECT_THAT(netbox["devices"], SizeIs(1));
}

TEST(WholeMachine, TakesNoFilter) {
  for (const char* format : {"jsonl", "redfish", "netbox"}) {
    const RunResult result = RunFake("fixed", {"--format", format, "--filter", "class=02"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("--filter cannot be used with --format"));
  }
}

}  // namespace
}  // namespace pciinfo
