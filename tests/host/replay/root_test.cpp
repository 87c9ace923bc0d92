// SPDX-License-Identifier: Apache-2.0

// Runs the program with --root.

#include "host/replay/root.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/host/made_archive.h"
#include "tests/host/run_program.h"
#include "tests/runtime/smbios_bytes.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string Text(const vtq::SmBiosBytes& bytes) { return {bytes.begin(), bytes.end()}; }

/// The configuration header of a network card, 8086:1234.
std::string Header() {
  std::string header(64, '\0');
  header.replace(0, 4, "\x86\x80\x34\x12", 4);
  header[0x0B] = 2;
  return header;
}

std::string DeviceLine() {
  std::string line = "0008\t80861234\t0";
  for (int i = 0; i < 14; ++i) line += "\t0";
  return line + "\t\n";
}

/// A machine with one function and, in SMBIOS tables, one slot.
std::vector<MadeEntry> SmallMachine() {
  const vtq::SmBiosBytes slot =
      vtq::MakeStructure(9, {1, 0xA5, 0x0D, 3, 4, 1, 0, 0x0C, 1}, {"LEFT SLOT"});
  const vtq::SmBiosBytes table = vtq::Joined({slot, vtq::MakeStructure(127, {})});
  return {{"proc/bus/pci/devices", DeviceLine()},
          {"proc/bus/pci/00/01.0", Header()},
          {"sys/firmware/dmi/tables/smbios_entry_point",
           Text(vtq::MakeVersion3Entry(3, 0, table.size()))},
          {"sys/firmware/dmi/tables/DMI", Text(table)},
          {"commands/lspci", "00:01.0 Ethernet controller: Recorded Card\n"},
          {"commands/lspci -vvv", "recorded verbose\n"},
          {"commands/lspci -xxxx", "recorded hex\n"},
          {"manifest.json", R"({"formatVersion": 1, "systemName": "box.example.org"})"}};
}

class Root : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return directory_ / name; }

  std::string Archive(const std::vector<MadeEntry>& entries) const {
    MakeArchive(Path("capture.tar.gz"), entries, "gzip");
    return Path("capture.tar.gz");
  }

  vtq::TemporaryDirectory directory_;
};

TEST_F(Root, ShowsTheCapturedMachine) {
  const RunResult result = RunPciinfo({"devices", "--root", Archive(SmallMachine())});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(LinesOf(result.out), ElementsAre(testing::StartsWith("ADDRESS"),
                                               HasSubstr("00:01.0  Ethernet controller  Intel ")));
  EXPECT_EQ(result.err, "");
}

TEST_F(Root, ShowsItsSlots) {
  const RunResult result = RunPciinfo({"slots", "--root", Archive(SmallMachine())});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("LEFT SLOT"));
}

TEST_F(Root, ShowsItsNameAndReplaysItsCommands) {
  const RunResult result =
      RunPciinfo({"--root", Archive(SmallMachine()), "instances", "--format", "json"});
  EXPECT_THAT(result.out, HasSubstr("SystemName=\\\"box.example.org\\\""));
  EXPECT_THAT(result.out, HasSubstr("\"RawResult\":[\"recorded hex\"]"));
  EXPECT_THAT(result.out, HasSubstr("\"RawResult\":[\"recorded verbose\"]"));
}

TEST_F(Root, TellsInLinesWhichMachineWasCapturedAndWhen) {
  std::vector<MadeEntry> machine = SmallMachine();
  machine.back().content = R"({"formatVersion": 1, "systemName": "box",
                               "capturedAt": "2024-05-06T07:08:09Z"})";
  machine.push_back({"etc/machine-id", "0123456789abcdef0123456789abcdef\n"});
  const RunResult result = RunPciinfo({"--root", Archive(machine), "slots", "--format", "jsonl"});
  EXPECT_THAT(result.out, testing::StartsWith("{\"system\":\"box\","
                                              "\"machineID\":\"0123456789abcdef0123456789abcdef\","
                                              "\"collected\":\"2024-05-06T07:08:09Z\",\"name\":"));
}

TEST_F(Root, TellsNothingOfThisMachineInLinesOfACapture) {
  const json line =
      json::parse(RunPciinfo({"--root", Archive(SmallMachine()), "--format", "jsonl"}).out);
  EXPECT_EQ(line["system"], "box.example.org");
  for (const char* key : {"machineID", "systemUUID", "collected"}) EXPECT_FALSE(line.contains(key));
}

TEST_F(Root, ANameMayBeLongerThanThoseOfTheKernel) {
  const std::string name = std::string(60, 'a') + "." + std::string(60, 'b');
  std::vector<MadeEntry> machine = SmallMachine();
  machine.back().content = R"({"formatVersion": 1, "systemName": ")" + name + "\"}";
  const RunResult result = RunPciinfo(
      {"--root", Archive(machine), "instances", "QZMSG_SystemBoard", "--format", "json"});
  EXPECT_THAT(result.out, HasSubstr("\"SystemName\":\"" + name + "\""));
}

TEST_F(Root, RunsTheRealToolsOnTheCapturedFiles) {
  const RunResult result = RunPciinfo(
      {"--root", Archive(SmallMachine()), "--live-commands", "instances", "--format", "json"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, Not(HasSubstr("ecorded")));
  EXPECT_THAT(result.out, HasSubstr("00: 86 80 34 12"));
}

TEST_F(Root, RunsWhatIsNotRecorded) {
  std::vector<MadeEntry> machine = SmallMachine();
  std::erase_if(machine, [](const MadeEntry& entry) { return entry.path == "commands/lspci"; });
  const RunResult result =
      RunPciinfo({"instances", "QZMSG_PCIDevice", "--format", "jsonl", "--root", Archive(machine)});
  EXPECT_THAT(result.out, HasSubstr("\"Ethernet controller: Intel Corporation "));
}

TEST_F(Root, AcceptsADirectoryMadeByHand) {
  fs::create_directories(Path("box/proc/bus/pci/00"));
  directory_.Write("box/proc/bus/pci/devices", DeviceLine());
  directory_.Write("box/proc/bus/pci/00/01.0", Header());
  const RunResult result =
      RunPciinfo({"--root", Path("box"), "instances", "QZMSG_PCIDevice", "--format", "json"});
  EXPECT_EQ(result.status, 0) << result.err;
  const json document = json::parse(result.out);
  ASSERT_EQ(document["instances"].size(), 1U);
  EXPECT_EQ(document["instances"][0]["properties"]["SystemName"], "");
  EXPECT_THAT(result.err, HasSubstr("this capture holds no SMBIOS tables"));
}

TEST_F(Root, AdvisesToCaptureAsRootOnlyWhereThatHelps) {
  const auto told = [this](const std::string& unread) {
    return RunPciinfo({"--root",
                       Archive({{"manifest.json",
                                 R"({"formatVersion": 1, "capturedAt": "2026-01-31T23:59:59Z", )"
                                 R"("unread": [)" +
                                     unread + "]}"}}),
                       "slots"})
        .err;
  };
  EXPECT_THAT(told(""), HasSubstr("the captured machine shows no SMBIOS tables"));
  EXPECT_THAT(told(""), testing::Not(HasSubstr("root")));
  EXPECT_THAT(told(R"({"path": "sys/firmware/dmi/tables/DMI", "reason": "Permission denied"})"),
              HasSubstr("only root can capture them"));
}

TEST_F(Root, ReadsAnArchiveFromStandardInput) {
  const RunResult result = RunShell("$PCIINFO --root - < " + Archive(SmallMachine()));
  EXPECT_THAT(result.out, HasSubstr("00:01.0  Intel "));
}

TEST_F(Root, PartsThatTheCaptureLacksAreNotThoseOfThisMachine) {
  const std::string capture = Archive({{"manifest.json", R"({"formatVersion": 1})"}});
  for (const char* option : {"--log-level=0", "--live-commands"}) {
    const RunResult result = RunPciinfo({"--root", capture, "instances", "--format=json", option});
    EXPECT_THAT(result.err, HasSubstr("this capture holds no /proc/bus/pci"));
    EXPECT_THAT(result.err, HasSubstr("this capture holds no SMBIOS tables"));
    const json document = json::parse(result.out);
    ASSERT_EQ(document["instances"].size(), 1U);
    for (const json& instance : document["instances"]) {
      EXPECT_EQ(instance["class"], "QZMSG_SystemBoard");
      EXPECT_EQ(instance["properties"]["SystemName"], "");
    }
  }
}

TEST_F(Root, NeedsNoPciBusInThisMachinesKernel) {
  const std::string capture = Archive(SmallMachine());
  const RunResult result = RunShell(
      "unshare --user --map-root-user --mount bash -c 'mount -t tmpfs none /proc/bus && mount -t "
      "tmpfs none /sys/bus && $PCIINFO --root " +
      capture + "'");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("00:01.0  Intel "));
}

TEST_F(Root, FilesOnTheCommandLineAreThoseOfThisMachine) {
  const std::string capture = Archive(SmallMachine());
  const RunResult result =
      RunShell("cd " + directory_.GetPath() +
               " && $PCIINFO --root capture.tar.gz --log-file here.log --only-plugin " +
               FakePluginFile("fixed") + " && test -s here.log");
  EXPECT_EQ(result.status, 0) << result.err;
}

TEST_F(Root, NothingIsLeftBehind) {
  const std::string capture = Archive(SmallMachine());
  const std::string mounts = RunShell("cat /proc/self/mountinfo; hostname").out;
  EXPECT_EQ(RunShell("cd " + directory_.GetPath() + " && $PCIINFO --root " + capture).status, 0);
  EXPECT_THAT(directory_.Names(), ElementsAre("capture.tar.gz"));
  EXPECT_EQ(RunShell("cat /proc/self/mountinfo; hostname").out, mounts);
}

TEST_F(Root, AHostileArchiveIsRefusedInOneLine) {
  for (const MadeEntry& entry : std::vector<MadeEntry>{{"/etc/x"},
                                                       {"sys/../../x"},
                                                       {"sys/x", "", 'l', "/etc/shadow"},
                                                       {"sys/x", "", 'h', "y"},
                                                       {"sys/x", "", 'c'},
                                                       {"manifest.json", "{"}}) {
    const RunResult result = RunPciinfo({"--root", Archive({{"sys/a"}, entry})});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(LinesOf(result.err),
                ElementsAre(testing::StartsWith("pciinfo: cannot use the capture " +
                                                Path("capture.tar.gz") + ": ")));
  }
}

TEST_F(Root, ABombIsRefused) {
  MakeSparseArchive(Path("bomb.tar"), "sys/x", "1T");
  const RunResult result = RunPciinfo({"--root", Path("bomb.tar")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("more than 1024 MiB"));
  // Many zeros, which are small only when compressed.
  const RunResult zeros = RunShell("truncate -s 1100M " + Path("zeros") + " && tar -C " +
                                   directory_.GetPath() + " -czf - zeros | $PCIINFO --root -");
  EXPECT_THAT(zeros.err, HasSubstr("more than 1024 MiB"));
}

TEST_F(Root, ManyEntriesAreRefused) {
  MakeArchive(Path("one.tar"), {{"x"}});
  const RunResult result =
      RunShell("cd " + directory_.GetPath() +
               " && for i in {1..1000}; do head -c 512 one.tar; done >block"
               " && for i in {1..1001}; do cat block; done | $PCIINFO --root -");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("more than 1000000 entries"));
}

/// An archive whose entries need `levels` directories each, none of which another one needs.
std::vector<MadeEntry> EntriesWithDirectories(int entries, int levels) {
  std::string tail;
  for (int i = 0; i < levels; ++i) tail += "/a";
  std::vector<MadeEntry> made;
  for (int i = 0; i < entries; ++i) made.push_back({"sys/" + std::to_string(i) + tail});
  return made;
}

using Clock = std::chrono::steady_clock;

TEST_F(Root, DeepPathsAreRefused) {
  const RunResult result = RunPciinfo({"--root", Archive(EntriesWithDirectories(1, 400))});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("more than 64 directories"));
}

// The sanitizers need more memory than these limits leave.
#ifndef PCIINFO_SANITIZED

TEST_F(Root, DirectoriesThatPathsNeedCountAsEntries) {
  const std::string archive = Archive(EntriesWithDirectories(1000, 50));
  EXPECT_LT(fs::file_size(archive), 100'000U);
  const RunResult result = RunPciinfo({"--root", archive, "--memory-limit", "128"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("more than 32768 entries (see --memory-limit)"));
}

TEST_F(Root, SmallFilesTakeNoMoreMemoryThanTheyMay) {
  std::vector<MadeEntry> files;
  for (int i = 0; i < 20'000; ++i) files.push_back({"sys/" + std::to_string(i), "x"});
  const std::string archive = Archive(files);
  const RunResult result = RunPciinfo({"--root", archive, "--memory-limit", "128"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("needs more memory than it may take (see --memory-limit)"));
}

TEST_F(Root, LargeFilesTakeNoMoreMemoryThanTheyMay) {
  MakeSparseArchive(Path("a.tar"), "sys/x", "40M");
  const RunResult result = RunPciinfo({"--root", Path("a.tar"), "--memory-limit", "128"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("more than 32 MiB (see --memory-limit)"));
}

#endif

TEST_F(Root, UnpackingEndsInTime) {
  // 900,000 directories from a few kilobytes for each thousand of them.
  const std::string archive = Archive(EntriesWithDirectories(15'000, 60));
  const auto start = Clock::now();
  const RunResult result = RunPciinfo({"--root", archive, "--timeout", "1"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("reading the capture"));
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
}

TEST_F(Root, APipeThatNeverEndsIsGivenUpInTime) {
  const auto start = Clock::now();
  const RunResult result =
      RunShell("mkfifo " + Path("pipe") + " && $PCIINFO --timeout 1 --root " + Path("pipe") +
               "; $PCIINFO --timeout 1 --root - <>" + Path("pipe"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(LinesOf(result.err),
              ElementsAre(HasSubstr("pipe did not come to an end in 1 seconds"),
                          HasSubstr("standard input did not come to an end in 1 seconds")));
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(8));
}

TEST_F(Root, ReadsAnArchiveFromAPipe) {
  const RunResult result = RunShell("$PCIINFO --root <(cat " + Archive(SmallMachine()) + ")");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("00:01.0  Intel "));
}

/// Cuts of a plain archive between its entries, of which nothing is left but the missing end.
TEST_F(Root, ACutArchiveIsRefused) {
  MakeArchive(Path("whole.tar"), SmallMachine());
  const std::string whole = directory_.Read("whole.tar");
  const std::size_t end = whole.find_last_not_of('\0');
  for (std::size_t size = 512; size < end; size += 512) {
    directory_.Write("cut.tar", whole.substr(0, size));
    const RunResult result = RunPciinfo({"--root", Path("cut.tar"), "devices"});
    ASSERT_EQ(result.status, 1) << size;
    ASSERT_EQ(result.out, "") << size;
    ASSERT_THAT(result.err, HasSubstr("cannot use the capture")) << size;
  }
}

TEST_F(Root, ACaptureWithoutAPartThatItsManifestCountsIsRefused) {
  std::vector<MadeEntry> machine = SmallMachine();
  machine.back().content = R"({"formatVersion": 1, "systemName": "x", "parts": 7})";
  EXPECT_EQ(RunPciinfo({"--root", Archive(machine)}).status, 0);
  machine.erase(machine.begin());
  const RunResult result = RunPciinfo({"--root", Archive(machine)});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("counts 7 parts, and there are 6"));
}

/// Runs as the user "nobody", with the capture on standard input, because that user cannot read the
/// test's files.
RunResult RunAsNobody(const std::string& capture, const std::string& arguments) {
  const std::string who = "setpriv --reuid=65534 --regid=65534 --clear-groups ";
  return RunShell((geteuid() == 0 ? who : "") + "$PCIINFO --root - " + arguments + " < " + capture);
}

TEST_F(Root, ServesAnOrdinaryUserOrSaysWhatToDo) {
  const RunResult result = RunAsNobody(Archive(SmallMachine()), "devices --live-commands");
  if (result.status == 0) {
    EXPECT_THAT(result.out, HasSubstr("Ethernet controller  Intel "));
  } else {
    EXPECT_THAT(LinesOf(result.err),
                ElementsAre(testing::AllOf(HasSubstr("run as root"), HasSubstr("sysctl kernel."))));
  }
}

TEST_F(Root, FilesThatAreNoCapturesAreExplained) {
  const auto errorOf = [](const std::string& file) { return RunPciinfo({"--root", file}).err; };
  EXPECT_THAT(errorOf(directory_.Write("empty", "")), HasSubstr(": it is empty\n"));
  EXPECT_THAT(errorOf(directory_.Write("text", "no capture\n")),
              HasSubstr(": it is no archive that is known here; a capture is a .tar, "));
  std::vector<MadeEntry> machine = SmallMachine();
  for (MadeEntry& entry : machine) entry.path = "box/" + entry.path;
  EXPECT_THAT(errorOf(Archive(machine)),
              HasSubstr(": its parts are in the folder \"box\"; unpack"));
}

TEST_F(Root, ReportsABadCaptureName) {
  EXPECT_THAT(RunPciinfo({"--root", Path("nothing")}).err, HasSubstr("No such file or directory"));
  EXPECT_THAT(RunPciinfo({"--root", "/"}).err, HasSubstr("root directory of this machine"));
  EXPECT_EQ(RunPciinfo({"--root", ""}).status, 2);
  EXPECT_EQ(RunPciinfo({"--live-commands"}).status, 2);
}

}  // namespace
