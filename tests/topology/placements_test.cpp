// SPDX-License-Identifier: Apache-2.0

// The plug-in, as pciinfo runs it, on whole machines whose truth is known.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/fakes/run_process.h"
#include "tests/runtime/temporary_directory.h"

namespace {

using nlohmann::json;
using Functions = std::set<std::string>;

/// The value of the only key of an object path.
std::string KeyOf(const std::string& path) {
  const std::size_t first = path.find('"') + 1;
  return path.substr(first, path.rfind('"') - first);
}

/// What the plug-in tells of a machine.
struct Placement {
  std::map<std::string, Functions> slots;  ///< those of the firmware's records only
  std::set<std::pair<std::set<std::string>, Functions>> shared;
};

Placement AskForPlacement(const std::string& root) {
  const RunResult run = RunProcess({PCIINFO_PROGRAM, "--root", root, "instances", "--only-plugin",
                                    TOPOLOGY_PLUGIN, "--format", "json"});
  EXPECT_EQ(run.status, 0) << run.err;
  Placement told;
  std::set<std::string> named;
  const json instances = json::parse(run.out).at("instances");
  for (const json& instance : instances) {
    const json& properties = instance.at("properties");
    if (instance.at("class") == "VTQ_PCISlot" && properties.at("Source") == "SMBIOS record") {
      named.insert(properties.at("Name").get<std::string>());
    }
    if (instance.at("class") == "VTQ_PCISharedPort" && properties.contains("Functions")) {
      told.shared.emplace(properties.at("Slots").get<std::set<std::string>>(),
                          properties.at("Functions").get<Functions>());
    }
  }
  for (const json& instance : instances) {
    if (instance.at("class") != "VTQ_PCIFunctionInSlot") continue;
    const json& properties = instance.at("properties");
    const std::string slot = KeyOf(properties.at("Antecedent"));
    if (named.contains(slot)) told.slots[slot].insert(KeyOf(properties.at("Dependent")));
  }
  return told;
}

/// Compares with the truth of a machine: {"slots": {NAME: [FUNCTION]}, "shared": [{"slots",
/// "functions"}]}.
void ExpectTruth(const Placement& told, const json& truth, const std::string& machine) {
  EXPECT_EQ(told.slots, (truth.at("slots").get<std::map<std::string, Functions>>())) << machine;
  std::set<std::pair<std::set<std::string>, Functions>> shared;
  for (const json& place : truth.at("shared")) {
    shared.emplace(place.at("slots").get<std::set<std::string>>(),
                   place.at("functions").get<Functions>());
  }
  EXPECT_EQ(told.shared, shared) << machine;
}

#ifdef PLACEMENTS

TEST(Placements, OfRealBoardsAreFoundAndNothingElseIsClaimed) {
  const json placements = json::parse(std::ifstream(PLACEMENTS));
  for (const auto& [board, truth] : placements.items()) {
    if (!truth.is_object()) continue;
    ExpectTruth(AskForPlacement(std::string(PCIINFO_MACHINES) + "/" + board + ".tar.gz"), truth,
                board);
  }
}

#endif

class GeneratedServerTest : public testing::TestWithParam<int> {};

TEST_P(GeneratedServerTest, HasEveryFunctionInItsTrueSlot) {
  const vtq::TemporaryDirectory directory;
  const std::string root = directory / "machine";
  ASSERT_EQ(RunProcess({BENCH_MACHINE, std::to_string(GetParam()), root}).status, 0);
  // Lines of a slot's tag, which counts the records, and a function.
  std::map<unsigned, Functions> truth;
  std::ifstream file(root + "/truth.txt");
  unsigned tag = 0;
  for (std::string function; file >> tag >> function;) truth[tag].insert(function);
  ASSERT_FALSE(truth.empty());
  std::set<Functions> expected;
  for (const auto& [slot, functions] : truth) expected.insert(functions);
  std::set<Functions> found;
  for (const auto& [slot, functions] : AskForPlacement(root).slots) found.insert(functions);
  EXPECT_EQ(found, expected);
}

TEST_P(GeneratedServerTest, WithSlotsOfEveryKindIsResolvedAsItWasMade) {
  const vtq::TemporaryDirectory directory;
  const std::string root = directory / "machine";
  ASSERT_EQ(RunProcess({BENCH_MACHINE, "--board", std::to_string(GetParam()), root}).status, 0);
  const json truth = json::parse(std::ifstream(root + "/truth.json"));
  ASSERT_FALSE(truth.at("slots").empty());
  ExpectTruth(AskForPlacement(root), truth, root);
}

// With sanitizers the largest takes a minute, and runs no code that the others do not.
#ifdef PCIINFO_SANITIZED
const auto kSizes = testing::Values(64, 512);
#else
const auto kSizes = testing::Values(64, 512, 4096);
#endif

INSTANTIATE_TEST_SUITE_P(Sizes, GeneratedServerTest, kSizes);

}  // namespace
