// SPDX-License-Identifier: Apache-2.0

// `pciinfo diff` from outside.

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
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class DiffCommand : public testing::Test {
 protected:
  /// The made-up machine's instances of the inventory, with a text put in the place of another.
  std::string MachineFile(const std::string& name, const std::string& from = "",
                          const std::string& to = "") const {
    std::string text =
        RunFake("fixed", {"instances", "QZMSG_PCIDevice", "QZMSG_PCIBridge", "QZMSG_SystemSlot",
                          "QZMSG_SystemBoard", "QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice",
                          "QZMSG_PCIRawData", "--format", "json"})
            .out;
    for (std::size_t at = from.empty() ? std::string::npos : text.find(from);
         at != std::string::npos; at = text.find(from, at + to.size())) {
      text.replace(at, from.size(), to);
    }
    return directory_.Write(name, text);
  }

  /// A capture of a machine with one device.
  std::string CaptureDirectory(const std::string& name, char revision = '\1') const {
    const std::string capture = directory_.GetPath() + "/" + name;
    fs::create_directories(capture + "/proc/bus/pci/03");
    fs::create_directories(capture + "/commands");
    std::ofstream(capture + "/proc/bus/pci/devices") << "0300\t80861533\t10\n";
    std::string config = "\x86\x80\x33\x15" + std::string(252, '\0');
    config[8] = revision;
    std::ofstream(capture + "/proc/bus/pci/03/00.0") << config;
    for (const char* command : {"lspci", "lspci -vvv", "lspci -xxxx"}) {
      std::ofstream(capture + "/commands/" + command) << "03:00.0 Ethernet controller: X\n";
    }
    return capture;
  }

  /// What the made-up machine tells of itself, as `instances --all` prints it.
  std::string WholeMachineFile(const std::string& name) const {
    return directory_.Write(name, RunFake("fixed", {"instances", "--all", "--format", "json"}).out);
  }

  vtq::TemporaryDirectory directory_;
};

TEST_F(DiffCommand, APipeIsReadOnce) {
  const std::string capture = CaptureDirectory("a");
  const std::string pack = "tar -C " + capture + " -cf - proc commands";
  const RunResult archive = RunShell("$PCIINFO diff <(" + pack + ") " + capture);
  EXPECT_EQ(archive.status, 0) << archive.out << archive.err;
  EXPECT_EQ(archive.out, "No differences.\n");
  EXPECT_EQ(RunShell(pack + " | $PCIINFO diff - <(" + pack + ")").status, 0);
  const std::string saved = MachineFile("a.json");
  EXPECT_EQ(RunShell("$PCIINFO diff <(cat " + saved + ") " + saved).status, 0);
}

TEST_F(DiffCommand, APipeThatNeverEndsIsGivenUpInTime) {
  const std::string pipe = directory_ / "pipe";
  const RunResult result =
      RunShell("mkfifo " + pipe + " && $PCIINFO diff --timeout 1 " + pipe + " live");
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("did not come to an end in 1 seconds"));
}

TEST_F(DiffCommand, TheSameIsTheSame) {
  const std::string machine = MachineFile("a.json");
  const RunResult result = RunPciinfo({"diff", machine, machine});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "No differences.\n");
  EXPECT_EQ(result.err, "");
  const RunResult live = RunFake("fixed", {"diff", machine, "live"});
  EXPECT_EQ(live.status, 0);
  EXPECT_EQ(live.out, "No differences.\n");
}

TEST_F(DiffCommand, ADifferenceIsStatusOne) {
  const std::string before = MachineFile("a.json");
  const std::string after = MachineFile("b.json", "\"Revision\":161", "\"Revision\":162");
  const RunResult result = RunPciinfo({"diff", before, after});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(result.out, EndsWith("    hardware revision a1 -> a2\n"));
  EXPECT_EQ(RunPciinfo({"diff", before, after, "--ignore", "Revision"}).status, 0);
  const json document = json::parse(RunPciinfo({"diff", before, after, "--format", "json"}).out);
  ASSERT_EQ(document["changes"].size(), 1U);
  EXPECT_EQ(document["changes"][0]["old"], 161);
}

TEST_F(DiffCommand, CapturesAreComparedAsMachines) {
  const std::string before = CaptureDirectory("a");
  const std::string after = CaptureDirectory("b", '\2');
  const RunResult result = RunPciinfo({"diff", before, after});
  EXPECT_EQ(result.status, 1) << result.err;
  EXPECT_THAT(result.out, HasSubstr("    revision 01 -> 02\n"));
  EXPECT_THAT(result.err, AllOf(HasSubstr("pciinfo: " + before + ": this capture holds no SMBIOS"),
                                HasSubstr("pciinfo: " + after + ": this capture holds no"),
                                Not(HasSubstr("not compared"))));
  EXPECT_EQ(RunPciinfo({"diff", before, after, "--ignore", "Revision"}).status, 0);
  const json document = json::parse(RunPciinfo({"diff", before, after, "--format", "json"}).out);
  EXPECT_EQ(document["compared"], "machines");
}

TEST_F(DiffCommand, TheBiosOfCapturesIsCompared) {
  for (const char* name : {"a", "b"}) {
    const std::string identity = CaptureDirectory(name) + "/sys/class/dmi/id";
    fs::create_directories(identity);
    std::ofstream(identity + "/bios_version") << "version " << name << "\n";
  }
  const RunResult result = RunPciinfo({"diff", directory_ / "a", directory_ / "b"});
  EXPECT_EQ(result.status, 1) << result.err;
  EXPECT_THAT(result.out, EndsWith("~ machine\n    BIOS version version a -> version b\n"));
}

TEST_F(DiffCommand, MachinesAreComparedWithoutLspci) {
  const std::string capture = CaptureDirectory("a");
  fs::remove_all(capture + "/commands");
  const RunResult result = RunPciinfo({"diff", capture, capture, "--log-level", "4"});
  EXPECT_EQ(result.status, 0) << result.out;
  EXPECT_THAT(result.err, Not(HasSubstr("lspci")));
}

TEST_F(DiffCommand, SavedInstancesOfAllClassesAreAMachine) {
  const std::string saved = WholeMachineFile("all.json");
  const RunResult live = RunFake("fixed", {"diff", saved, "live", "--format", "json"});
  EXPECT_EQ(live.status, 0) << live.out;
  EXPECT_EQ(json::parse(live.out)["compared"], "machines");
  EXPECT_THAT(live.err, HasSubstr("pciinfo: " + saved +
                                  ": not compared, because this side does not tell it: machine, "
                                  "board and BIOS (saved instances do not tell it)"));
}

TEST_F(DiffCommand, SavedInstancesOfTheInventoryAreComparedAsInstances) {
  const std::string saved = MachineFile("a.json");
  const RunResult result = RunFake("fixed", {"diff", saved, "live", "--format", "json"});
  EXPECT_EQ(result.status, 0) << result.out;
  EXPECT_EQ(json::parse(result.out)["compared"], "instances");
  EXPECT_THAT(result.err, HasSubstr("pciinfo: " + saved + ": comparing instances, because"));
}

TEST_F(DiffCommand, WhatCouldNotBeCollectedIsTrouble) {
  const std::string before = CaptureDirectory("a");
  const std::string saved = directory_.Write(
      "a.json", RunPciinfo({"instances", "--format", "json", "--root", before}).out);
  const std::string after = CaptureDirectory("b");
  fs::remove(after + "/proc/bus/pci/03/00.0");
  const RunResult result = RunPciinfo({"diff", saved, after});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.out, HasSubstr("- function 03:00.0"));
  EXPECT_THAT(result.err, HasSubstr("pciinfo: " + after + ": QZMSG_PCIDevice: "));
}

TEST_F(DiffCommand, StandardInputMayBeJsonOrAnArchive) {
  const std::string machine = MachineFile("a.json");
  EXPECT_EQ(RunShell("$PCIINFO diff - " + machine + " <" + machine).status, 0);
  const std::string capture = CaptureDirectory("b");
  const RunResult archive =
      RunShell("tar -C " + capture + " -cf - . | $PCIINFO diff " + capture + " -");
  EXPECT_EQ(archive.status, 0) << archive.err << archive.out;
  const RunResult nothing = RunShell("$PCIINFO diff - " + machine + " </dev/null");
  EXPECT_EQ(nothing.status, 2);
  EXPECT_EQ(nothing.err, "pciinfo: -: standard input is empty\n");
}

TEST_F(DiffCommand, APartIsComparedInPart) {
  const std::string whole = MachineFile("a.json");
  const std::string part = directory_.Write(
      "part.json", RunFake("fixed", {"instances", "QZMSG_SystemSlot", "--format", "jsonl"}).out);
  const RunResult result = RunPciinfo({"diff", whole, part});
  EXPECT_EQ(result.status, 0) << result.out;
  EXPECT_THAT(result.err, AllOf(StartsWith("pciinfo: " + part + ": not comparing "),
                                HasSubstr("QZMSG_PCIDevice"), Not(HasSubstr("SystemSlot"))));
  const std::string other = directory_.Write(
      "other.json", RunFake("fixed", {"instances", "QZMSG_SystemBoard", "--format", "json"}).out);
  const RunResult nothing = RunPciinfo({"diff", part, other});
  EXPECT_EQ(nothing.status, 2);
  EXPECT_THAT(nothing.err, HasSubstr("nothing to compare"));
}

TEST_F(DiffCommand, HostileJsonIsRefusedByName) {
  const std::string machine = MachineFile("a.json");
  const std::vector<std::string> texts = {"{",
                                          "{}",
                                          "{\"instances\":[{}]}",
                                          "{\"instances\":[{\"class\":\"X\"}]}",
                                          "{\"instances\":" + std::string(200000, '['),
                                          std::string("{\0\xff", 3)};
  for (const std::string& text : texts) {
    const std::string bad = directory_.Write("bad.json", text);
    const RunResult result = RunPciinfo({"diff", machine, bad});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("pciinfo: " + bad + ": "));
  }
}

TEST_F(DiffCommand, AFileThatIsNeitherCaptureNorJsonIsRefused) {
  const std::string machine = MachineFile("a.json");
  for (const char* content : {"", "no capture\n"}) {
    const std::string bad = directory_.Write("bad", content);
    const RunResult result = RunPciinfo({"diff", bad, machine});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr(bad));
  }
  const RunResult missing = RunPciinfo({"diff", machine, "/nowhere/at.all"});
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(missing.err,
            "pciinfo: cannot open /nowhere/at.all: No such file or "
            "directory\n");
}

TEST_F(DiffCommand, WrongUsageSaysWhatToDo) {
  const std::string machine = MachineFile("a.json");
  const auto error = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "diff");
    const RunResult result = RunPciinfo(arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    return result.err;
  };
  EXPECT_THAT(error({"live", "live"}), HasSubstr("both sides are this machine"));
  EXPECT_THAT(error({"-", "-"}), HasSubstr("standard input"));
  EXPECT_THAT(error({"", machine}), HasSubstr("name of a side is empty"));
  EXPECT_THAT(error({machine}), HasSubstr("B is required"));
  EXPECT_THAT(error({machine, machine, "--root", "x"}), HasSubstr("leave out --root"));
  EXPECT_THAT(error({machine, machine, "--log-file", "x"}), HasSubstr("--log-file"));
  EXPECT_THAT(error({machine, machine, "--ignore", "Colour"}),
              AllOf(HasSubstr("\"Colour\""), HasSubstr("LinkWidth"), HasSubstr("IRQ"),
                    HasSubstr("BiosVersion")));
}

TEST_F(DiffCommand, ACrashOfAPluginIsContained) {
  const std::string machine = MachineFile("a.json");
  const RunResult result = RunHostile("Abort QZMSG_SystemSlot", {"diff", machine, "live"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("pciinfo: live: QZMSG_SystemSlot: the plug-in died by signal"));
  const RunResult hung = RunHostile("Hang Init", {"diff", machine, "live", "--timeout", "0.5"});
  EXPECT_EQ(hung.status, 2);
  EXPECT_THAT(hung.err, HasSubstr("pciinfo: live: could not be collected"));
}

TEST_F(DiffCommand, ACrashWhileAMachineIsCollectedIsContained) {
  const std::string machine = WholeMachineFile("all.json");
  const RunResult result = RunHostile("Abort VTQ_PCISharedPort", {"diff", machine, "live"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err,
              HasSubstr("pciinfo: live: VTQ_PCISharedPort: the plug-in died by signal"));
}

TEST_F(DiffCommand, AFullDiskIsTroubleAndAClosedPipeIsQuiet) {
  const std::string machine = MachineFile("a.json");
  const RunResult full = RunShell("$PCIINFO diff " + machine + " " + machine + " >/dev/full");
  EXPECT_EQ(full.status, 2);
  EXPECT_THAT(full.err, HasSubstr("cannot write the output"));
}

TEST(DiffHelp, NamesTheExitStatus) {
  EXPECT_THAT(RunPciinfo({"diff", "--help"}).out,
              AllOf(HasSubstr("1    differences"), HasSubstr("\"live\"")));
}

}  // namespace
