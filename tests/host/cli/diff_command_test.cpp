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
  /// What the made-up machine prints, with a text put in the place of another.
  std::string MachineFile(const std::string& name, const std::string& from = "",
                          const std::string& to = "") const {
    std::string text = RunFake("fixed", {"instances", "--format", "json"}).out;
    for (std::size_t at = from.empty() ? std::string::npos : text.find(from);
         at != std::string::npos; at = text.find(from, at + to.size())) {
      text.replace(at, from.size(), to);
    }
    return directory_.Write(name, text);
  }

  /// A capture of a machine with one device.
  std::string CaptureDirectory(const std::string& name, const std::string& irq) const {
    const std::string capture = directory_.GetPath() + "/" + name;
    fs::create_directories(capture + "/proc/bus/pci/03");
    fs::create_directories(capture + "/commands");
    std::ofstream(capture + "/proc/bus/pci/devices") << "0300\t80861533\t" << irq << "\n";
    std::ofstream(capture + "/proc/bus/pci/03/00.0")
        << "\x86\x80\x33\x15" << std::string(252, '\0');
    for (const char* command : {"lspci", "lspci -vvv", "lspci -xxxx"}) {
      std::ofstream(capture + "/commands/" + command) << "03:00.0 Ethernet controller: X\n";
    }
    return capture;
  }

  vtq::TemporaryDirectory directory_;
};

TEST_F(DiffCommand, APipeIsReadOnce) {
  const std::string capture = CaptureDirectory("a", "10");
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

TEST_F(DiffCommand, CapturesAreCompared) {
  const std::string before = CaptureDirectory("a", "10");
  const std::string after = CaptureDirectory("b", "11");
  const RunResult result = RunPciinfo({"diff", before, after});
  EXPECT_EQ(result.status, 1) << result.err;
  EXPECT_THAT(result.out, HasSubstr("    interrupt 16 -> 17\n"));
  EXPECT_THAT(result.err, AllOf(HasSubstr("pciinfo: " + before + ": this capture holds no SMBIOS"),
                                HasSubstr("pciinfo: " + after + ": this capture holds no")));
  const std::string kept = RunPciinfo({"instances", "--format", "json", "--root", before}).out;
  EXPECT_EQ(RunPciinfo({"diff", directory_.Write("kept.json", kept), before}).status, 0);
}

TEST_F(DiffCommand, WhatCouldNotBeCollectedIsTrouble) {
  const std::string before = CaptureDirectory("a", "10");
  const std::string after = CaptureDirectory("b", "10");
  fs::remove(after + "/proc/bus/pci/03/00.0");
  const RunResult result = RunPciinfo({"diff", before, after});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.out, HasSubstr("- function 03:00.0"));
  EXPECT_THAT(result.err, HasSubstr("pciinfo: " + after + ": QZMSG_PCIDevice: "));
}

TEST_F(DiffCommand, StandardInputMayBeJsonOrAnArchive) {
  const std::string machine = MachineFile("a.json");
  EXPECT_EQ(RunShell("$PCIINFO diff - " + machine + " <" + machine).status, 0);
  const std::string capture = CaptureDirectory("b", "10");
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
              AllOf(HasSubstr("\"Colour\""), HasSubstr("LinkWidth"), HasSubstr("IRQ")));
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
