// SPDX-License-Identifier: Apache-2.0

// Runs `diff` on the captures in the directory PCIINFO_MACHINES.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/host/captures.h"
#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

using nlohmann::json;

class CapturedDiffs : public testing::TestWithParam<std::string> {};

TEST_P(CapturedDiffs, AMachineDoesNotDifferFromItsJson) {
  const vtq::TemporaryDirectory directory;
  const RunResult kept = RunPciinfo({"instances", "--format", "json", "--root", GetParam()});
  const std::string file = directory.Write("kept.json", kept.out);
  const RunResult result = RunPciinfo({"diff", file, GetParam()});
  EXPECT_EQ(result.out, "No differences.\n");
  EXPECT_EQ(result.status, kept.status == 0 ? 0 : 2) << result.err;
}

/// A change that the test finds in the JSON of both machines independently.
TEST_P(CapturedDiffs, EveryRevisionThatIsChangedIsFound) {
  const vtq::TemporaryDirectory directory;
  json document =
      json::parse(RunPciinfo({"instances", "--format", "json", "--root", GetParam()}).out);
  const std::string before = directory.Write("before.json", document.dump());
  std::multiset<std::string> expected;
  for (json& instance : document["instances"]) {
    json& properties = instance["properties"];
    if (!properties.contains("Revision")) continue;
    properties["Revision"] = (properties["Revision"].get<int>() + 1) % 256;
    expected.insert(instance["path"].get<std::string>());
  }
  const std::string after = directory.Write("after.json", document.dump());
  const RunResult result = RunPciinfo({"diff", before, after, "--format", "json"});
  EXPECT_EQ(result.status, expected.empty() ? 0 : 1) << result.err;
  std::multiset<std::string> found;
  const json changes = json::parse(result.out)["changes"];
  for (const json& change : changes) {
    EXPECT_EQ(change["property"], "Revision");
    found.insert(change["path"].get<std::string>());
  }
  EXPECT_EQ(found, expected);
}

INSTANTIATE_TEST_SUITE_P(Machines, CapturedDiffs, testing::ValuesIn(Captures()), NameOfCapture);

}  // namespace
