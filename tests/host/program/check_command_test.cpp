// SPDX-License-Identifier: Apache-2.0

// Runs `pciinfo check` with the real plug-in on machines that the tests make.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

/// A capture of a machine with one device.
class CheckCommand : public testing::Test {
 protected:
  void SetUp() override {
    Write("proc/bus/pci/devices", "0300\t80861533\t10\tfe000000\t0\t0\t0\t0\t0\t0\t1000\n");
    Write("proc/bus/pci/03/00.0", "\x86\x80\x33\x15" + std::string(252, '\0'));
    Write("sys/bus/pci/devices/0000:03:00.0/vendor", "0x8086\n");
    Write("sys/bus/pci/devices/0000:03:00.0/device", "0x1533\n");
    Write("commands/lspci", "03:00.0 Ethernet controller: Something\n");
  }

  void Write(const std::string& path, const std::string& content) const {
    const fs::path file = capture_.GetPath() + "/" + path;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
  }

  RunResult Check(std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.begin(), {"check", "--root", capture_.GetPath()});
    return RunPciinfo(arguments);
  }

  std::vector<std::string> Codes() const {
    std::vector<std::string> codes;
    const json findings = json::parse(Check({"--format", "json"}).out)["findings"];
    for (const json& finding : findings) codes.push_back(finding["code"]);
    return codes;
  }

  vtq::TemporaryDirectory capture_;
};

TEST_F(CheckCommand, NotesAreNotErrors) {
  const RunResult result = Check();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, AllOf(HasSubstr("note: slot-tables-missing\n"),
                                HasSubstr("not in this capture"), HasSubstr("  Advice: ")));
  EXPECT_THAT(Codes(), testing::ElementsAre("slot-tables-missing"));
}

TEST_F(CheckCommand, AnErrorChangesTheExitStatus) {
  Write("sys/bus/pci/devices/0001:07:00.0/vendor", "0x8086\n");
  const RunResult result = Check();
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out, HasSubstr("error: domain-missing\n"));
  EXPECT_THAT(result.out, HasSubstr("    0001:07:00.0\n"));
}

TEST_F(CheckCommand, FunctionsWithoutALspciNameAreFound) {
  Write("commands/lspci", "04:00.0 Something else\n");
  EXPECT_THAT(Codes(), testing::ElementsAre("description-missing", "slot-tables-missing"));
}

TEST_F(CheckCommand, AMachineThatDisappearsIsFound) {
  Write("proc/bus/pci/03/00.0", std::string(256, '\xff'));
  EXPECT_THAT(Codes(),
              testing::ElementsAre("function-unpublished", "ids-disagree", "slot-tables-missing"));
}

TEST_F(CheckCommand, ACaptureOfNothingIsNotTheLiveMachine) {
  const vtq::TemporaryDirectory empty;
  std::ofstream(empty.GetPath() + "/manifest.json") << R"({"formatVersion": 1})";
  const RunResult result = RunPciinfo({"check", "--format", "json", "--root", empty.GetPath()});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, AllOf(HasSubstr("pci-bus-missing"), HasSubstr("slot-tables-missing")));
}

TEST(CheckOfThisMachine, Works) {
  const RunResult result = RunPciinfo({"check", "--format", "json"});
  EXPECT_TRUE(result.status == 0 || result.status == 1) << result.err;
  EXPECT_TRUE(json::parse(result.out)["findings"].is_array());
}

TEST(CheckHelp, NamesTheExitStatus) {
  EXPECT_THAT(RunPciinfo({"check", "--help"}).out, HasSubstr("no findings, or only notes"));
  EXPECT_EQ(RunPciinfo({"check", "--format", "yaml"}).status, 2);
}

}  // namespace
