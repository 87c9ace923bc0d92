// SPDX-License-Identifier: Apache-2.0

// The program with its own plug-in on this machine, while a mount namespace hides parts of the
// machine.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/host/process_count.h"
#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// Runs the shell command `change`, which changes the mounts, and then another one.
RunResult RunHidden(const std::string& change, const std::string& commandLine) {
  return RunShell("unshare --user --map-root-user --mount /bin/bash -c '" + change + " && " +
                  commandLine + "'");
}

// The two classes that need the listing of lspci.
const std::string kFunctions = "instances QZMSG_PCIDevice QZMSG_PCIBridge --format jsonl";

const std::string kWithoutLspci = "mount --bind /dev/null /usr/bin/lspci";
const std::string kWithoutPciBus = "mount -t tmpfs none /proc/bus && mount -t tmpfs none /sys/bus";

class Surroundings : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists("/proc/bus/pci")) GTEST_SKIP() << "this machine has no PCI bus";
    if (!std::filesystem::exists("/usr/bin/lspci")) GTEST_SKIP() << "lspci is not installed";
    if (RunHidden("true", "true").status != 0) {
      GTEST_SKIP() << "this user may not make mount namespaces";
    }
  }
};

TEST_F(Surroundings, WithoutLspciFunctionsAreListedAndTheReasonIsReported) {
  const RunResult result = RunHidden(kWithoutLspci, "$PCIINFO " + kFunctions);
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(LinesOf(result.out), Contains(HasSubstr("PCI Vendor ID ")));
  EXPECT_THAT(LinesOf(result.err),
              Contains(StartsWith("pciinfo: QZMSG_PCIDevice: lspci gave no descriptions: ")));
}

TEST_F(Surroundings, WithoutLspciTheLossOfRawDataIsReported) {
  const RunResult result =
      RunHidden(kWithoutLspci, "$PCIINFO instances QZMSG_PCIRawData --format jsonl");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(LinesOf(result.err),
              Contains(testing::AllOf(
                  StartsWith("pciinfo: QZMSG_PCIRawData: the class could not be collected: "),
                  HasSubstr("lspci -xxxx"))));
}

TEST_F(Surroundings, AMachineWithoutAPciBusIsNotAnError) {
  const RunResult inventory = RunHidden(kWithoutPciBus, "$PCIINFO devices");
  EXPECT_EQ(inventory.status, 0) << inventory.err;
  EXPECT_EQ(LinesOf(inventory.out).size(), 1U);
  EXPECT_THAT(LinesOf(inventory.err),
              Contains(StartsWith("pciinfo: this machine shows no PCI bus")).Times(1));
}

TEST_F(Surroundings, WithoutAPciBusTheBoardIsListed) {
  const RunResult result = RunHidden(kWithoutPciBus, "$PCIINFO instances --format jsonl");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(LinesOf(result.out), Contains(HasSubstr("SystemBoard1")));
  EXPECT_THAT(LinesOf(result.err), Contains(HasSubstr("no PCI bus")).Times(1));
}

TEST_F(Surroundings, AnUnreadableFunctionIsNamedAndTheOthersAreListed) {
  const std::string all = RunPciinfo({"devices", "--format", "json"}).out;
  const std::string first =
      nlohmann::json::parse(all).at("functions").at(0).at("address");  // "0000:00:00.0"
  const std::string file = "/proc/bus/pci/" + first.substr(5, 2) + "/" + first.substr(8);
  const RunResult result = RunHidden("mount --bind /dev/null " + file, "$PCIINFO " + kFunctions);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(LinesOf(result.out).size() + 1, LinesOf(RunShell("$PCIINFO " + kFunctions).out).size());
  EXPECT_THAT(LinesOf(result.err),
              Contains(EndsWith(file + " could not be read; this function is missing")));
}

TEST_F(Surroundings, ViewsNeedNoProc) {
  const RunResult result = RunHidden("mount -t tmpfs none /proc/bus", "$PCIINFO devices");
  EXPECT_EQ(result.status, 0) << result.err;
  const RunResult whole = RunPciinfo({"devices"});
  EXPECT_EQ(result.out, whole.out);
  EXPECT_EQ(result.err, whole.err);
}

// Replaces lspci by a script.
std::string WithTool(const std::string& script) {
  return "printf \"#!/bin/sh\\n" + script +
         "\\n\" >/tmp/$$.tool && chmod 755 /tmp/$$.tool && "
         "mount --bind /tmp/$$.tool /usr/bin/lspci && rm /tmp/$$.tool";
}

/// Returns the calls of lspci in a run of the program after `change`.
std::vector<std::string> RunsOfTheTool(const std::string& change, const std::string& words) {
  std::vector<std::string> commands =
      ProgramsStartedBy({"unshare", "--user", "--map-root-user", "--mount", "/bin/bash", "-c",
                         change + " && " PCIINFO_PROGRAM " " + words + "; true"});
  std::erase_if(commands, [](const std::string& command) { return !command.starts_with("lspci"); });
  return commands;
}

TEST_F(Surroundings, TheListingIsMadeOnceAndOnlyForClassesThatNeedIt) {
  const auto runsOf = [&](const std::string& words) { return RunsOfTheTool("true", words); };
  EXPECT_THAT(runsOf("instances QZMSG_PCIDevice QZMSG_PCIBridge"), ElementsAre("lspci"));
  for (const char* view : {"", "devices", "slots", "tree"}) EXPECT_THAT(runsOf(view), IsEmpty());
  EXPECT_THAT(runsOf("instances QZMSG_SystemBoard QZMSG_SystemSlot"), IsEmpty());
  EXPECT_THAT(runsOf("instances QZMSG_PCIRawData"), ElementsAre("lspci -xxxx", "lspci -vvv"));
}

TEST_F(Surroundings, TheListingIsNotMadeForWrongUsageOrAnEmptyMachine) {
  EXPECT_THAT(RunsOfTheTool("true", kFunctions + " --bogus"), IsEmpty());
  EXPECT_THAT(RunsOfTheTool("true", "instances QZMSG_Nothing"), IsEmpty());
  EXPECT_THAT(RunsOfTheTool(kWithoutPciBus, kFunctions), IsEmpty());
}

TEST_F(Surroundings, AToolThatHangsIsKilled) {
  const RunResult result = RunHidden(
      WithTool("sleep 987654; true"),
      "$PCIINFO instances --format jsonl --timeout 6; echo $?; pgrep -fx \"sleep 987654\"");
  EXPECT_THAT(LinesOf(result.out), Contains(HasSubstr("QZMSG_SystemBoard")));
  EXPECT_EQ(LinesOf(result.out).back(), "1");
  EXPECT_THAT(result.err, HasSubstr("pciinfo: QZMSG_PCIRawData: the plug-in was stopped after "));
}

TEST_F(Surroundings, OutputOfAToolThatDiesIsDropped) {
  const RunResult result = RunHidden(WithTool("echo 00:00.0 Host bridge: half; kill -9 \\$\\$"),
                                     "$PCIINFO " + kFunctions);
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out, Not(HasSubstr("half")));
  EXPECT_THAT(LinesOf(result.err), Contains(HasSubstr("\"lspci\" died by signal 9")));
}

TEST_F(Surroundings, AToolThatHangsOnceIsRunAgainForTheOtherClasses) {
  const std::string tool = WithTool("mkdir once && sleep 987657; echo 00:00.0 Host bridge");
  const RunResult result = RunHidden(tool, "$PCIINFO " + kFunctions + " --timeout 4");
  EXPECT_THAT(LinesOf(result.err),
              Contains(StartsWith("pciinfo: QZMSG_PCIDevice: the plug-in was stopped after ")));
}

TEST_F(Surroundings, ACaptureThatASignalEndsLeavesNothingBehind) {
  for (const char* signal : {"HUP", "INT", "QUIT", "TERM", "USR1", "ALRM", "XCPU"}) {
    for (const char* name : {"box.tar.zst", "box"}) {
      const vtq::TemporaryDirectory directory;
      const RunResult result =
          RunHidden(WithTool("sleep 987652"), std::string("timeout -s ") + signal +
                                                  " 0.5 $PCIINFO capture " + (directory / name) +
                                                  "; echo $?; pgrep -fx \"sleep 987652\"");
      EXPECT_EQ(result.out, "124\n") << signal;
      EXPECT_THAT(directory.Names(), IsEmpty()) << name;
    }
  }
}

TEST_F(Surroundings, AViewStartsAWorkerOnly) {
  EXPECT_THAT(ProgramsStartedBy({PCIINFO_PROGRAM, "devices"}), ElementsAre(""));
}

TEST_F(Surroundings, OnATerminalAViewStartsThePagerAsWell) {
  EXPECT_THAT(ProgramsStartedBy({PCIINFO_PROGRAM, "devices"}, "head"),
              testing::UnorderedElementsAre("", "head"));
  EXPECT_THAT(ProgramsStartedBy({PCIINFO_PROGRAM, "devices", "--no-pager"}, "head"),
              ElementsAre(""));
}

TEST_F(Surroundings, OneProcessDoesEverythingWhereThatIsWanted) {
  EXPECT_THAT(ProgramsStartedBy({PCIINFO_PROGRAM, "devices", "--in-process"}), IsEmpty());
  EXPECT_EQ(RunPciinfo({"devices", "--in-process"}).out, RunPciinfo({"devices"}).out);
}

// A sanitizer has limits of its own.
#ifndef PCIINFO_SANITIZED
TEST_F(Surroundings, EndlessOutputOfAToolLosesOnlyItsClass) {
  const RunResult result = RunHidden(
      WithTool("exec cat /dev/zero"),
      "$PCIINFO instances QZMSG_PCIRawData QZMSG_SystemBoard --format jsonl --memory-limit 300");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(LinesOf(result.out), ElementsAre(HasSubstr("QZMSG_SystemBoard")));
  EXPECT_THAT(result.err, HasSubstr("pciinfo: QZMSG_PCIRawData: the class could not be collected: "
                                    "the command \"lspci -xxxx\" printed more than there is "
                                    "memory for"));
}
#endif

}  // namespace
