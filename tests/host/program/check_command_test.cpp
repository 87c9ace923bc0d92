// SPDX-License-Identifier: Apache-2.0

// Runs `pciinfo check` with the real plug-ins on machines that the tests make.

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

/// A configuration header of a network card, with the identifiers of `ids` in little-endian order.
std::string NetworkConfig(const std::string& ids) {
  std::string config = ids + std::string(252, '\0');
  config[0x0B] = '\x02';
  return config;
}

/// A capture of a machine with one device.
class CheckCommand : public testing::Test {
 protected:
  void SetUp() override {
    Write("proc/bus/pci/devices", "0300\t80861533\t10\tfe000000\t0\t0\t0\t0\t0\t0\t1000\n");
    Write("proc/bus/pci/03/00.0", NetworkConfig("\x86\x80\x33\x15"));
    Write("sys/bus/pci/devices/0000:03:00.0/vendor", "0x8086\n");
    Write("sys/bus/pci/devices/0000:03:00.0/device", "0x1533\n");
    WriteFact("config", NetworkConfig("\x86\x80\x33\x15"));
    Write("commands/lspci", "03:00.0 Ethernet controller: Something\n");
  }

  void Write(const std::string& path, const std::string& content) const {
    const fs::path file = capture_.GetPath() + "/" + path;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
  }

  /// Writes a file of the function.
  void WriteFact(const std::string& name, const std::string& content) const {
    Write("sys/bus/pci/devices/0000:03:00.0/" + name, content);
  }

  RunResult Check(std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.begin(), {"check", "--root", capture_.GetPath()});
    return RunPciinfo(arguments);
  }

  std::vector<std::string> Codes(std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.end(), {"--format", "json"});
    std::vector<std::string> codes;
    const json findings = json::parse(Check(arguments).out)["findings"];
    for (const json& finding : findings) codes.push_back(finding["code"]);
    return codes;
  }
  std::vector<std::string> ClassCodes() const { return Codes({"--classes"}); }

  vtq::TemporaryDirectory capture_;
};

TEST_F(CheckCommand, AHealthyMachineHasNoFindings) {
  fs::remove_all(capture_.GetPath() + "/commands");
  fs::remove_all(capture_.GetPath() + "/proc");
  WriteFact("aer_dev_fatal", "DLP 0\nTOTAL_ERR_FATAL 0\n");
  const RunResult result = Check();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "No findings.\n");
  EXPECT_THAT(result.err, testing::Not(HasSubstr("lspci")));
}

TEST_F(CheckCommand, ErrorCountersAreFound) {
  WriteFact("aer_dev_correctable", "RxErr 3\nBadTLP 0\nTOTAL_ERR_COR 3\n");
  EXPECT_EQ(Check().status, 0) << "a note";
  EXPECT_THAT(Check().out, HasSubstr("note: errors-corrected\n"));
  WriteFact("aer_dev_nonfatal", "UnsupReq 1\nTOTAL_ERR_NONFATAL 1\n");
  WriteFact("aer_dev_fatal", "DLP 2\nTOTAL_ERR_FATAL 2\n");
  const RunResult result = Check();
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out, HasSubstr("error: errors-fatal\n"));
  EXPECT_THAT(result.out, HasSubstr("    03:00.0  Intel I210 Gigabit Network Connection  DLP 2\n"));
  EXPECT_THAT(Codes(), testing::ElementsAre("errors-fatal", "errors-nonfatal", "errors-corrected"));
}

TEST_F(CheckCommand, ARegionWithoutAnAddressIsFound) {
  WriteFact("resource",
            "0x0000000000000000 0x00000000000fffff 0x0000000000040200\n"
            "0x00000000fe000000 0x00000000fe003fff 0x0000000000040200\n");
  EXPECT_THAT(Check().out, HasSubstr("memory region 0 of 0x100000 bytes"));
  EXPECT_THAT(Codes(), testing::ElementsAre("region-unassigned"));
}

TEST_F(CheckCommand, AFunctionWithoutItsDriverIsFound) {
  Write("sys/bus/pci/modules.alias", "alias pci:v00008086d00001533sv*sd*bc*sc*i* igb\n");
  EXPECT_THAT(Codes(), testing::IsEmpty()) << "no driver of this machine is known";
  Write("sys/bus/pci/devices/0000:04:00.0/config", NetworkConfig("\x86\x80\x21\x15"));
  fs::create_symlink("../../../../bus/pci/drivers/igb",
                     capture_.GetPath() + "/sys/bus/pci/devices/0000:04:00.0/driver");
  EXPECT_THAT(Check().out, HasSubstr("  module igb\n"));
  EXPECT_THAT(Codes(), testing::ElementsAre("driver-missing"));
}

TEST_F(CheckCommand, AFunctionThatNoLongerAnswersIsFound) {
  WriteFact("config", std::string(256, '\xff'));
  EXPECT_THAT(Codes(), testing::ElementsAre("function-silent"));
  EXPECT_EQ(Check().status, 1);
}

TEST_F(CheckCommand, FindingsAreChosen) {
  WriteFact("aer_dev_correctable", "RxErr 3\n");
  WriteFact("aer_dev_nonfatal", "UnsupReq 1\n");
  EXPECT_EQ(Check().status, 1);
  EXPECT_EQ(Check({"--fail-on", "error"}).status, 0);
  EXPECT_THAT(Codes({"--min-severity", "warning"}), testing::ElementsAre("errors-nonfatal"));
  EXPECT_EQ(Check({"--ignore", "errors-nonfatal"}).status, 0);
  EXPECT_EQ(Check({"--ignore", "errors-nonfatal", "--fail-on", "note"}).status, 1);
  const RunResult none =
      Check({"--ignore", "errors-nonfatal", "--ignore", "errors-corrected", "--fail-on", "note"});
  EXPECT_EQ(none.status, 0);
  EXPECT_EQ(none.out, "No findings.\n");
  EXPECT_EQ(Check({"--fail-on", "note", "--min-severity", "error"}).status, 0);
}

TEST_F(CheckCommand, AnUnknownCodeIsWrongUsage) {
  const RunResult result = Check({"--ignore", "errors-nonfatl"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("there is no finding \"errors-nonfatl\": did you mean "
                                    "\"errors-nonfatal\"?"));
  EXPECT_EQ(Check({"--fail-on", "grave"}).status, 2);
  EXPECT_EQ(Check({"--classes", "--ignore", "slot-tables-missing"}).status, 0);
}

TEST_F(CheckCommand, NotesOfTheClassesAreNotErrors) {
  const RunResult result = Check({"--classes"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, AllOf(HasSubstr("note: slot-tables-missing\n"),
                                HasSubstr("not in this capture"), HasSubstr("  Advice: ")));
  EXPECT_THAT(ClassCodes(), testing::ElementsAre("slot-tables-missing"));
}

TEST_F(CheckCommand, OtherDomainsAreALimitOfTheClasses) {
  Write("sys/bus/pci/devices/0001:07:00.0/vendor", "0x8086\n");
  const RunResult result = Check({"--classes"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("note: domain-missing\n"));
  EXPECT_THAT(result.out, HasSubstr("    0001:07:00.0\n"));
  EXPECT_THAT(Codes(), testing::IsEmpty());
}

TEST_F(CheckCommand, FunctionsWithoutALspciNameAreFound) {
  Write("commands/lspci", "04:00.0 Something else\n");
  EXPECT_THAT(ClassCodes(), testing::ElementsAre("description-missing", "slot-tables-missing"));
  EXPECT_EQ(Check({"--classes"}).status, 1);
}

TEST_F(CheckCommand, AMachineThatDisappearsIsFound) {
  Write("proc/bus/pci/03/00.0", std::string(256, '\xff'));
  EXPECT_THAT(ClassCodes(),
              testing::ElementsAre("function-unpublished", "ids-disagree", "slot-tables-missing"));
}

TEST_F(CheckCommand, ACaptureOfNothingIsNotTheLiveMachine) {
  const vtq::TemporaryDirectory empty;
  std::ofstream(empty.GetPath() + "/manifest.json") << R"({"formatVersion": 1})";
  const RunResult classes = RunPciinfo({"check", "--classes", "--root", empty.GetPath()});
  EXPECT_EQ(classes.status, 0) << classes.err;
  EXPECT_THAT(classes.out, AllOf(HasSubstr("pci-bus-missing"), HasSubstr("slot-tables-missing")));
  const RunResult machine = RunPciinfo({"check", "--root", empty.GetPath()});
  EXPECT_EQ(machine.status, 0) << machine.err;
  EXPECT_EQ(machine.out, "No findings.\n");
}

TEST(CheckOfThisMachine, Works) {
  for (const char* what : {"--classes", "--fail-on=error"}) {
    const RunResult result = RunPciinfo({"check", what, "--format", "json"});
    EXPECT_TRUE(result.status == 0 || result.status == 1) << result.err;
    EXPECT_TRUE(json::parse(result.out)["findings"].is_array());
  }
}

TEST(CheckHelp, NamesTheExitStatus) {
  EXPECT_THAT(RunPciinfo({"check", "--help"}).out, HasSubstr("no finding is as grave as"));
  EXPECT_EQ(RunPciinfo({"check", "--format", "yaml"}).status, 2);
}

}  // namespace
