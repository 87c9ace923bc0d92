// SPDX-License-Identifier: Apache-2.0

// Runs the program on every capture in the directory that PCIINFO_MACHINES named when the tests
// were built.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "host/formats/json_reader.h"
#include "host/report/layout.h"
#include "tests/host/captures.h"
#include "tests/host/cim_xml_document.h"
#include "tests/host/report/drawing_checks.h"
#include "tests/host/report/read_machine.h"
#include "tests/host/run_program.h"
#include "tests/host/written.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

class CapturedMachine : public testing::TestWithParam<std::string> {
 protected:
  static RunResult Run(const std::string& capture, std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--root", capture});
    return RunPciinfo(arguments);
  }
};

TEST_P(CapturedMachine, EveryClassIsServed) {
  const RunResult result = Run(GetParam(), {"instances", "--format", "json"});
  EXPECT_TRUE(result.status == 0 || result.status == 1) << result.status << result.err;
  const auto document = nlohmann::json::parse(result.out);
  EXPECT_FALSE(document["instances"].empty());
  EXPECT_THAT(result.err, testing::Not(testing::HasSubstr("warning")));
  EXPECT_LE(Run(GetParam(), {"slots"}).status, 1);
}

TEST_P(CapturedMachine, ItsRedactedCaptureHasTheSameSlots) {
  const vtq::TemporaryDirectory directory;
  const std::string safe = directory.GetPath() + "/safe.tar.zst";
  EXPECT_EQ(Run(GetParam(), {"capture", "--redact", safe}).status, 0);
  const std::vector<std::string> query = {"slots", "--format", "json"};
  EXPECT_EQ(Run(safe, query).out, Run(GetParam(), query).out);
}

TEST_P(CapturedMachine, ItsFormatsHoldTheSame) {
  const std::string text = Run(GetParam(), {"instances", "--format", "json"}).out;
  const auto repository = MakeEmptyRepository();
  pciinfo::ReadInstances(text, *repository);
  EXPECT_EQ(Written("json", *repository), text);
  const CimXmlDocument xml(Run(GetParam(), {"instances", "--format", "cim-xml"}).out);
  EXPECT_TRUE(xml.IsValid());
  EXPECT_EQ(xml.ToJson(), AsXmlCarries(nlohmann::json::parse(text)));
}

nlohmann::json Document(const RunResult& result) { return nlohmann::json::parse(result.out); }

std::multiset<std::string> AddressesIn(const nlohmann::json& functions) {
  std::multiset<std::string> addresses;
  for (const auto& function : functions) {
    addresses.insert(function["address"]);
    if (function.contains("functions")) addresses.merge(AddressesIn(function["functions"]));
  }
  return addresses;
}

/// Returns the number of functions that the lines of a tree represent.
std::size_t CountDrawn(const std::string& tree) {
  const std::regex folded(R"( \.\. .*?  (\d+) x )");
  std::size_t count = 0;
  for (const std::string& line : LinesOf(tree)) {
    std::smatch match;
    if (line.starts_with("Bus ")) continue;
    count += std::regex_search(line, match, folded) ? std::stoul(match[1]) : 1;
  }
  return count;
}

TEST_P(CapturedMachine, ItsTreeHasEveryFunctionOnce) {
  const auto devices = Document(Run(GetParam(), {"devices", "--format", "json"}));
  const auto expected = AddressesIn(devices["functions"]);
  std::multiset<std::string> found;
  const auto tree = Document(Run(GetParam(), {"tree", "--format", "json"}));
  for (const auto& bus : tree["buses"]) found.merge(AddressesIn(bus["functions"]));
  EXPECT_EQ(found, expected);
  EXPECT_EQ(CountDrawn(Run(GetParam(), {"tree"}).out), expected.size());
  EXPECT_EQ(CountDrawn(Run(GetParam(), {"tree", "--all"}).out), expected.size());
}

TEST_P(CapturedMachine, WhatIsListedCanBeShown) {
  const auto slots = Document(Run(GetParam(), {"slots", "--format", "json"}));
  const auto devices = Document(Run(GetParam(), {"devices", "--format", "json"}))["functions"];
  // All functions of a small machine, some of a large one.
  const std::size_t step = devices.size() / 20 + 1;
  for (std::size_t i = 0; i < devices.size(); i += step) {
    const std::string address = devices[i]["address"];
    const auto shown = Document(Run(GetParam(), {"show", address, "--format", "json"}));
    EXPECT_EQ(shown["function"], devices[i]);
  }
  for (const auto& slot : slots["slots"]) {
    const auto shown = Document(Run(GetParam(), {"show", slot["name"], "--format", "json"}));
    EXPECT_EQ(shown["slot"], slot);
  }
}

TEST_P(CapturedMachine, ItsOverviewCountsEveryFunction) {
  const auto devices = Document(Run(GetParam(), {"devices", "--format", "json"}))["functions"];
  const std::string count = devices.empty() ? "no" : std::to_string(devices.size());
  EXPECT_THAT(Run(GetParam(), {}).out, testing::HasSubstr("PCI       " + count + " function"));
}

TEST_P(CapturedMachine, ABridgeFilterAndADeviceFilterShareTheFunctions) {
  const auto count = [](std::vector<std::string> filter) {
    filter.insert(filter.begin(), {"devices", "--format", "json"});
    return Document(Run(GetParam(), filter))["functions"].size();
  };
  EXPECT_EQ(count({"--filter", "kind=bridge"}) + count({"--filter", "kind=device"}), count({}));
  EXPECT_EQ(count({"--filter", "kind=bridge", "--filter", "kind=device"}), count({}));
  EXPECT_EQ(count({"--filter", "kind=bridge,kind=device"}), 0U);
}

TEST_P(CapturedMachine, ItsDrawingIsLegibleAndComplete) {
  const pciinfo::MachineModel machine = MachineOfCapture(GetParam());
  auto parts = pciinfo::PartsOf(pciinfo::MakePortTree(machine), machine);
  parts.push_back(pciinfo::SlotsWithoutPort(machine));
  for (const bool isFolded : {false, true}) {
    if (isFolded) pciinfo::FoldParts(parts);
    const auto panels = pciinfo::LayOut(parts);
    for (const pciinfo::Panel& panel : panels) ExpectLegible(panel);
    ExpectComplete(panels, machine);
  }
}

INSTANTIATE_TEST_SUITE_P(Machines, CapturedMachine, testing::ValuesIn(Captures()), NameOfCapture);

}  // namespace
