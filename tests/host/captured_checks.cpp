// SPDX-License-Identifier: Apache-2.0

// Runs `check` on the captures in the directory PCIINFO_MACHINES. What it finds in the machines was
// judged one by one; what `check --classes` finds is compared with other readings of their files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "tests/host/captures.h"
#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

using nlohmann::json;

/// A capture, unpacked, and the program's inventory of it.
class Machine {
 public:
  explicit Machine(const std::string& capture)
      : findings_(
            json::parse(RunPciinfo({"check", "--classes", "--format", "json", "--root", capture})
                            .out)["findings"]) {
    RunProcess({"/bin/tar", "-xzf", capture, "-C", directory_.GetPath()});
  }

  /// The objects of a finding, sorted.
  std::vector<std::string> Objects(const std::string& code) const {
    std::vector<std::string> objects;
    for (const json& finding : findings_) {
      if (finding["code"] != code) continue;
      for (const json& object : finding["objects"]) objects.push_back(object["object"]);
    }
    std::sort(objects.begin(), objects.end());
    return objects;
  }
  std::set<std::string> Codes() const {
    std::set<std::string> codes;
    for (const json& finding : findings_) codes.insert(finding["code"].get<std::string>());
    return codes;
  }

  std::vector<fs::path> In(const std::string& directory) const {
    std::vector<fs::path> paths;
    const fs::path place = directory_.GetPath() + "/" + directory;
    if (!fs::exists(place)) return paths;
    for (const auto& entry : fs::directory_iterator(place)) paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    return paths;
  }
  std::string Text(const std::string& file) const { return directory_.Read(file); }

 private:
  vtq::TemporaryDirectory directory_;
  json findings_;
};

/// The numbers of a file's first line.
unsigned long NumberIn(const fs::path& file) {
  std::string text;
  std::ifstream(file) >> text;
  return std::stoul("0" + text.substr(text.find('x') == 1 ? 2 : 0), nullptr, 16);
}

struct Expected {
  std::vector<std::string> wideAddresses;
  std::vector<std::string> wideSizes;
  std::vector<std::string> otherDomains;
};

/// The first six regions of devices in domain 0, and the functions of other domains, from sysfs.
Expected ExpectedOf(const Machine& machine) {
  constexpr unsigned long kBridge = 0x06;
  Expected expected;
  for (const fs::path& function : machine.In("sys/bus/pci/devices")) {
    const std::string name = function.filename();
    if (!name.starts_with("0000:")) {
      expected.otherDomains.push_back(name);
      continue;
    }
    if (NumberIn(function / "class") >> 16U == kBridge) continue;
    std::ifstream regions(function / "resource");
    std::string first, last, flags;
    for (int i = 0; i < 6 && regions >> first >> last >> flags; ++i) {
      const auto begin = std::stoull(first, nullptr, 16);
      const auto end = std::stoull(last, nullptr, 16);
      if (begin >> 32U != 0) expected.wideAddresses.push_back(name.substr(5));
      if (begin != 0 && (end - begin + 1) >> 32U != 0) expected.wideSizes.push_back(name.substr(5));
    }
  }
  return expected;
}

class CapturedMachineChecks : public testing::TestWithParam<std::string> {};

/// The findings about the captured machines, of which all work. Each is one that an administrator
/// wants to know of; whoever adds a machine judges its findings and names them here.
std::vector<std::string> JudgedFindings(const std::string& machine) {
  // Three slots each are behind two switches, and the records name the port above the switch.
  if (machine == "asus-WS-X299-SAGE-A") return {"slot-port-shared"};
  return {};
}

TEST_P(CapturedMachineChecks, FindWhatAnAdministratorWantsToKnow) {
  const RunResult result = RunPciinfo({"check", "--format", "json", "--root", GetParam()});
  EXPECT_EQ(result.status, 0) << result.out << result.err;
  std::vector<std::string> codes;
  const json document = json::parse(result.out);
  for (const json& finding : document["findings"]) codes.push_back(finding["code"]);
  EXPECT_EQ(codes, JudgedFindings(fs::path(GetParam()).stem().stem())) << result.out;
}

class CapturedChecks : public testing::TestWithParam<std::string> {};

TEST_P(CapturedChecks, AgreeWithSysfs) {
  const Machine machine(GetParam());
  const Expected expected = ExpectedOf(machine);
  EXPECT_EQ(machine.Objects("region-address-wide"), expected.wideAddresses);
  EXPECT_EQ(machine.Objects("region-size-wide"), expected.wideSizes);
  std::vector<std::string> others = machine.Objects("domain-missing");
  for (const std::string& mixedUp : machine.Objects("domain-mixed-up")) others.push_back(mixedUp);
  std::sort(others.begin(), others.end());
  EXPECT_EQ(others, expected.otherDomains);
}

TEST_P(CapturedChecks, KnowHowMuchOfAConfigurationThereIs) {
  const Machine machine(GetParam());
  std::vector<std::string> expected;
  for (const fs::path& bus : machine.In("proc/bus/pci")) {
    const std::string name = bus.filename();
    if (name == "devices" || name.find(':') != std::string::npos) continue;
    for (const auto& file : fs::directory_iterator(bus)) {
      if (file.file_size() == 64) expected.push_back(name + ":" + file.path().filename().string());
    }
  }
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(machine.Objects("configuration-short"), expected);
}

TEST_P(CapturedChecks, SayWhatTheCaptureLacks) {
  const Machine machine(GetParam());
  const auto codes = machine.Codes();
  EXPECT_EQ(codes.count("slot-tables-missing"), machine.In("sys/firmware/dmi/tables").empty());
  EXPECT_EQ(codes.count("sysfs-missing"), machine.In("sys/bus/pci/devices").empty());
}

TEST_P(CapturedChecks, KnowTheAddressesThatAreRepeated) {
  const Machine machine(GetParam());
  std::map<std::string, int> counts;
  std::istringstream list(machine.Text("proc/bus/pci/devices"));
  for (std::string line; std::getline(list, line);) ++counts[line.substr(0, 4)];
  const auto repeated = std::count_if(counts.begin(), counts.end(),
                                      [](const auto& entry) { return entry.second > 1; });
  EXPECT_EQ(machine.Objects("address-repeated").size(), static_cast<std::size_t>(repeated));
}

INSTANTIATE_TEST_SUITE_P(Machines, CapturedMachineChecks, testing::ValuesIn(Captures()),
                         NameOfCapture);
INSTANTIATE_TEST_SUITE_P(Machines, CapturedChecks, testing::ValuesIn(Captures()), NameOfCapture);

}  // namespace
