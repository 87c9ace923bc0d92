// SPDX-License-Identifier: Apache-2.0

// Runs `diff` on the captures in the directory PCIINFO_MACHINES.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "tests/host/captures.h"
#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

using nlohmann::json;

class CapturedDiffs : public testing::TestWithParam<std::string> {};

TEST_P(CapturedDiffs, AMachineDoesNotDifferFromItself) {
  const RunResult result = RunPciinfo({"diff", "--all", GetParam(), GetParam()});
  EXPECT_EQ(result.out, "No differences.\n");
  EXPECT_EQ(result.status, 0) << result.err;
}

TEST_P(CapturedDiffs, AMachineDoesNotDifferFromItsJson) {
  const vtq::TemporaryDirectory directory;
  for (const bool all : {false, true}) {
    std::vector<std::string> instances = {"instances", "--format", "json", "--root", GetParam()};
    if (all) instances.emplace_back("--all");
    const RunResult kept = RunPciinfo(instances);
    const std::string file = directory.Write("kept.json", kept.out);
    const RunResult result = RunPciinfo({"diff", file, GetParam()});
    EXPECT_EQ(result.out, "No differences.\n");
    EXPECT_EQ(result.status, kept.status == 0 || all ? 0 : 2) << result.err;
  }
}

json ChangesBetween(const std::string& before, const std::string& after) {
  const RunResult result = RunPciinfo({"diff", before, after, "--format", "json"});
  json changes = json::parse(result.out)["changes"];
  EXPECT_EQ(result.status, changes.empty() ? 0 : 1) << result.err;
  return changes;
}

json InstancesOf(const std::string& capture, bool all) {
  std::vector<std::string> arguments = {"instances", "--format", "json", "--root", capture};
  if (all) arguments.emplace_back("--all");
  return json::parse(RunPciinfo(arguments).out);
}

/// Changes that the test finds in the JSON of both machines independently.
TEST_P(CapturedDiffs, EveryRevisionThatIsChangedIsFound) {
  const vtq::TemporaryDirectory directory;
  json document = InstancesOf(GetParam(), true);
  const std::string before = directory.Write("before.json", document.dump());
  std::multiset<std::string> expected;
  for (json& instance : document["instances"]) {
    json& properties = instance["properties"];
    if (instance["class"] != "VTQ_PCIFunction" || !properties.contains("Revision")) continue;
    properties["Revision"] = (properties["Revision"].get<int>() + 1) % 256;
    expected.insert(properties["Address"].get<std::string>());
  }
  const std::string after = directory.Write("after.json", document.dump());
  std::multiset<std::string> found;
  for (const json& change : ChangesBetween(before, after)) {
    EXPECT_EQ(change["property"], "Revision");
    for (const json& function : change["functions"]) found.insert(function.get<std::string>());
  }
  EXPECT_EQ(found, expected);
}

TEST_P(CapturedDiffs, EveryRevisionOfAnInstanceThatIsChangedIsFound) {
  const vtq::TemporaryDirectory directory;
  json document = InstancesOf(GetParam(), false);
  const std::string before = directory.Write("before.json", document.dump());
  std::multiset<std::string> expected;
  for (json& instance : document["instances"]) {
    json& properties = instance["properties"];
    if (!properties.contains("Revision")) continue;
    properties["Revision"] = (properties["Revision"].get<int>() + 1) % 256;
    expected.insert(instance["path"].get<std::string>());
  }
  const std::string after = directory.Write("after.json", document.dump());
  std::multiset<std::string> found;
  for (const json& change : ChangesBetween(before, after)) {
    EXPECT_EQ(change["property"], "Revision");
    found.insert(change["path"].get<std::string>());
  }
  EXPECT_EQ(found, expected);
}

/// The buses behind bridges, as "0000:03".
std::set<std::string> BusesBehindBridges(const json& document) {
  std::set<std::string> buses;
  for (const json& instance : document["instances"]) {
    const json& properties = instance["properties"];
    if (instance["class"] != "VTQ_PCIFunction" || !properties.contains("ParentPort")) continue;
    const auto address = properties["Address"].get<std::string>();
    buses.insert(address.substr(0, address.rfind(':')));
  }
  return buses;
}

/// Gives each bus behind a bridge the number of the next one, in all addresses of a text.
std::string WithOtherBuses(const std::string& text, const std::set<std::string>& buses) {
  const std::regex address("([0-9a-f]{4,}:[0-9a-f]{2})(?=:[0-9a-f]{2}\\.[0-7])");
  std::string changed;
  auto rest = text.cbegin();
  for (std::sregex_iterator match(text.begin(), text.end(), address), end; match != end; ++match) {
    changed.append(rest, (*match)[0].first);
    const auto bus = buses.find(match->str());
    const auto next = bus == buses.end() ? bus : std::next(bus);
    changed += bus == buses.end() ? match->str() : next == buses.end() ? *buses.begin() : *next;
    rest = (*match)[0].second;
  }
  return changed.append(rest, text.cend());
}

TEST_P(CapturedDiffs, OtherNumbersOfBusesAreAllThatIsToldOfThem) {
  const vtq::TemporaryDirectory directory;
  const json document = InstancesOf(GetParam(), true);
  const std::set<std::string> buses = BusesBehindBridges(document);
  const std::string before = directory.Write("before.json", document.dump());
  const std::string after = directory.Write("after.json", WithOtherBuses(document.dump(), buses));
  std::set<std::string> found;
  for (const json& change : ChangesBetween(before, after)) {
    EXPECT_EQ(change["subject"], "buses") << change;
    found.insert(change["old"].get<std::string>());
  }
  EXPECT_EQ(found, buses.size() > 1 ? buses : std::set<std::string>());
}

/// The links to drivers in an unpacked capture.
std::vector<fs::path> DriverLinks(const std::string& capture) {
  std::vector<fs::path> links;
  const fs::path devices = capture + "/sys/bus/pci/devices";
  if (!fs::exists(devices)) return links;
  for (const auto& device : fs::directory_iterator(devices)) {
    if (fs::is_symlink(device.path() / "driver")) links.push_back(device.path() / "driver");
  }
  std::sort(links.begin(), links.end());
  return links;
}

TEST_P(CapturedDiffs, AModifiedCopyDiffersInWhatWasModified) {
  const vtq::TemporaryDirectory directory;
  const std::string copy = directory.GetPath() + "/copy";
  fs::create_directory(copy);
  ASSERT_EQ(RunShell("tar -C " + copy + " -xzf " + GetParam()).status, 0);
  EXPECT_TRUE(ChangesBetween(GetParam(), copy).empty());
  const std::vector<fs::path> links = DriverLinks(copy);
  if (links.size() < 2) return;  // a single driver that changes would leave no function with one
  fs::remove(links.back());
  fs::create_symlink("../../../../bus/pci/drivers/another", links.back());
  const json changes = ChangesBetween(GetParam(), copy);
  ASSERT_EQ(changes.size(), 1U) << changes;
  EXPECT_EQ(changes[0]["property"], "Driver");
  EXPECT_EQ(changes[0]["new"], "another");
  EXPECT_EQ(changes[0]["functions"], json::array({links.back().parent_path().filename().string()}));
}

INSTANTIATE_TEST_SUITE_P(Machines, CapturedDiffs, testing::ValuesIn(Captures()), NameOfCapture);

}  // namespace
