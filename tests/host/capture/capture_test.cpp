// SPDX-License-Identifier: Apache-2.0

// The program captures this machine and shows the capture.

#include "host/capture/capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>

#include "tests/host/made_archive.h"
#include "tests/host/run_program.h"
#include "tests/runtime/smbios_bytes.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::string Text(const vtq::SmBiosBytes& bytes) { return {bytes.begin(), bytes.end()}; }

std::string AllInstances(const std::vector<std::string>& options) {
  std::vector<std::string> arguments = {"instances", "--format", "json"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  const RunResult result = RunPciinfo(arguments);
  EXPECT_EQ(result.status, 0) << result.err;
  return result.out;
}

class CaptureTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return directory_ / name; }

  vtq::TemporaryDirectory directory_;
};

class CaptureOfThisMachine : public CaptureTest, public testing::WithParamInterface<const char*> {};

TEST_P(CaptureOfThisMachine, GivesTheSameInstancesByteForByte) {
  const RunResult made = RunPciinfo({"capture", Path(GetParam())});
  ASSERT_EQ(made.status, 0) << made.err;
  EXPECT_EQ(made.out + made.err, "");
  const std::string live = AllInstances({});
  EXPECT_EQ(AllInstances({"--root", Path(GetParam())}), live);
  EXPECT_EQ(AllInstances({"--root", Path(GetParam()), "--live-commands"}), live);
}

INSTANTIATE_TEST_SUITE_P(Forms, CaptureOfThisMachine,
                         testing::Values("box.tar.zst", "box.tar.gz", "box.tar", "box"));

TEST_F(CaptureTest, GoesToStandardOutputAsATarArchive) {
  EXPECT_EQ(RunShell("$PCIINFO capture - > " + Path("box")).status, 0);
  EXPECT_EQ(directory_.Read("box").substr(257, 5), "ustar");
  EXPECT_EQ(AllInstances({"--root", Path("box")}), AllInstances({}));
}

TEST_F(CaptureTest, AnOrdinaryUserCapturesWhatThatUserCanRead) {
  fs::permissions(directory_.GetPath(), fs::perms{0777});
  const std::string who =
      geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
  const RunResult live = RunShell(who + "$PCIINFO instances --format json");
  RunShell(who + "$PCIINFO capture " + Path("box.tar"));
  const RunResult replayed =
      RunShell(who + "$PCIINFO --root " + Path("box.tar") + " instances --format json");
  if (replayed.status != 0) {
    EXPECT_THAT(replayed.err, HasSubstr("run as root"));
    EXPECT_EQ(AllInstances({"--root", Path("box.tar")}), live.out);
  } else {
    EXPECT_EQ(replayed.out, live.out);
  }
}

TEST_F(CaptureTest, ACaptureOfACaptureIsTheSame) {
  ASSERT_EQ(RunPciinfo({"capture", Path("one")}).status, 0);
  ASSERT_EQ(RunPciinfo({"--root", Path("one"), "capture", Path("two")}).status, 0);
  EXPECT_EQ(RunShell("diff -r --no-dereference " + Path("one") + " " + Path("two")).out, "");
}

TEST_F(CaptureTest, ANonEmptyDirectoryIsNotChanged) {
  fs::create_directory(Path("box"));
  directory_.Write("box/mine", "1");
  const RunResult result = RunPciinfo({"capture", Path("box")});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("is not empty"));
  EXPECT_THAT(directory_.Names(), ElementsAre("box"));
}

TEST_F(CaptureTest, AFailureLeavesNothing) {
  const RunResult result =
      RunShell("ulimit -f 1; trap '' XFSZ; $PCIINFO capture " + Path("box.tar"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("cannot write"));
  EXPECT_THAT(directory_.Names(), IsEmpty());
}

TEST_F(CaptureTest, ASignalLeavesNothingAndStopsIt) {
  for (const std::string name : {"box.tar", "box"}) {
    // A tool that prints until the reader closes the pipe. It may write nowhere, so that it runs is
    // seen by its command line.
    const std::string tool = directory_.WriteScript("slow-tool",
                                                    "[ \"$1\" != --version ] || exit\n"
                                                    "while sleep 0.1; do echo x; done");
    const RunResult result = RunShell(
        "unshare --user --map-root-user --mount bash -c 'mount --bind " + tool +
        " /usr/bin/lspci; $PCIINFO capture " + Path(name) +
        " & capture=$!; for i in {1..200}; do "
        "pgrep -f \"^[^ ]*sh /usr/bin/lspci( -[^-]|$)\" > /dev/null && break; sleep 0.05; done; "
        "kill -TERM $capture; wait $capture'");
    EXPECT_EQ(result.status, 143) << result.err;
    fs::remove(tool);
    EXPECT_THAT(directory_.Names(), IsEmpty());
  }
}

TEST_F(CaptureTest, UnreadablePartsAreReportedAndListed) {
  const RunResult result = RunShell(
      "unshare --user --map-root-user --mount bash -c 'mount --bind /dev/null /usr/bin/lspci; "
      "$PCIINFO capture " +
      Path("box") + "'");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(LinesOf(result.err),
              testing::Contains(HasSubstr("not fully in the capture: commands/lspci -vvv: ")));
  const auto manifest = nlohmann::json::parse(directory_.Read("box/manifest.json"));
  EXPECT_EQ(manifest["unread"].size(), 3U);
  EXPECT_EQ(manifest["unread"][0]["path"], "commands/lspci");
}

/// Runs a shell command where lspci prints a line, complains and exits with status 3.
RunResult RunWithFailingTool(const vtq::TemporaryDirectory& directory, const std::string& command) {
  const std::string tool =
      directory.WriteScript("tool", "echo 00:00.0 Some bridge\necho no access >&2\nexit 3");
  return RunShell("unshare --user --map-root-user --mount bash -c 'mount --bind " + tool +
                  " /usr/bin/lspci; " + command + "'");
}

TEST_F(CaptureTest, OutputOfAFailingToolIsKeptAndListed) {
  const RunResult result = RunWithFailingTool(directory_, "$PCIINFO capture " + Path("box"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(LinesOf(result.err),
              testing::Contains(AllOf(HasSubstr("not fully in the capture: commands/lspci -vvv: "),
                                      HasSubstr("exited with status 3"), HasSubstr("no access"))));
  EXPECT_EQ(directory_.Read("box/commands/lspci -vvv"), "00:00.0 Some bridge\n");
  const auto manifest = nlohmann::json::parse(directory_.Read("box/manifest.json"));
  EXPECT_EQ(manifest["unread"].size(), 3U);
}

TEST_F(CaptureTest, OutputOfAFailingToolIsShownAndSaid) {
  const RunResult result =
      RunWithFailingTool(directory_, "$PCIINFO instances QZMSG_PCIRawData --format json");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("exited with status 3, so its output may be incomplete"));
  EXPECT_THAT(result.out, HasSubstr("00:00.0 Some bridge"));
}

TEST_F(CaptureTest, AFullDiskIsAnErrorAndLeavesNothing) {
  for (const std::string name : {"box.tar", "box"}) {
    const RunResult result =
        RunShell("unshare --user --map-root-user --mount bash -c 'mount -t tmpfs -o size=4k none " +
                 directory_.GetPath() + "; $PCIINFO capture " + Path(name) + "; echo $?; ls -A " +
                 directory_.GetPath() + "'");
    EXPECT_EQ(result.out, "1\n") << name;
    EXPECT_THAT(LinesOf(result.err), ElementsAre(AllOf(HasSubstr("cannot write"),
                                                       HasSubstr("No space left on device"))));
  }
}

TEST_F(CaptureTest, TheManifestCountsTheParts) {
  ASSERT_EQ(RunPciinfo({"capture", Path("box")}).status, 0);
  const auto manifest = nlohmann::json::parse(directory_.Read("box/manifest.json"));
  std::size_t parts = 0;
  for (const auto& entry : fs::recursive_directory_iterator(Path("box"))) {
    if (entry.is_symlink() || !entry.is_directory()) ++parts;
  }
  if (fs::exists(Path("box/etc/machine-id"))) --parts;  // older programs do not find it
  EXPECT_EQ(manifest["parts"], parts - 1);
}

TEST_F(CaptureTest, AMachineWithoutPciIsNotAnError) {
  const RunResult result = RunShell(
      "unshare --user --map-root-user --mount bash -c 'mount -t tmpfs none /proc/bus && "
      "mount -t tmpfs none /sys && $PCIINFO capture " +
      Path("box") + "'");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_FALSE(fs::exists(Path("box/commands")));
}

/// A machine with two slots, one function, and serial numbers in every field that can have one.
std::vector<MadeEntry> TellingMachine() {
  vtq::SmBiosBytes board(11);
  board[7 - 4] = 1;
  board[8 - 4] = 2;
  const vtq::SmBiosBytes table =
      vtq::Joined({vtq::MakeStructure(2, board, {"SECRET-1", "SECRET-2"}),
                   vtq::MakeStructure(9, {1, 0xA5, 0x0D, 3, 4, 1, 0, 0x0C, 1}, {"LEFT SLOT"}),
                   vtq::MakeStructure(9, {1, 0xA5, 0x0D, 3, 4, 2, 0, 0x0C, 1}, {"RIGHT SLOT"}),
                   vtq::MakeStructure(221, {1, 2}, {"SECRET-3"}), vtq::MakeStructure(127, {})});
  return {{"proc/bus/pci/devices", ""},
          {"sys/firmware/dmi/tables/smbios_entry_point",
           Text(vtq::MakeVersion3Entry(3, 0, table.size()))},
          {"sys/firmware/dmi/tables/DMI", Text(table)},
          {"commands/lspci", ""},
          {"commands/lspci -xxxx", ""},
          {"commands/lspci -vvv", "\t\t\t[SN] Serial number: SECRET-4\n"},
          {"manifest.json", R"({"formatVersion": 1, "systemName": "SECRET-5.example.org"})"}};
}

TEST_F(CaptureTest, ARedactedCaptureHasSlotsAndNoSerialNumber) {
  MakeArchive(Path("box.tar"), TellingMachine());
  ASSERT_EQ(RunPciinfo({"--root", Path("box.tar"), "capture", "--redact", Path("safe.tar")}).status,
            0);
  EXPECT_THAT(directory_.Read("box.tar"), HasSubstr("SECRET"));
  EXPECT_THAT(directory_.Read("safe.tar"), Not(HasSubstr("SECRET")));
  const RunResult slots = RunPciinfo({"--root", Path("box.tar"), "slots", "--format", "json"});
  EXPECT_THAT(slots.out, HasSubstr("RIGHT SLOT"));
  EXPECT_EQ(RunPciinfo({"--root", Path("safe.tar"), "slots", "--format", "json"}).out, slots.out);
}

TEST_F(CaptureTest, TablesThatCannotBeRedactedAreLeftOut) {
  std::vector<MadeEntry> machine = TellingMachine();
  machine[1].content[5] ^= 1;  // the checksum
  MakeArchive(Path("box.tar"), machine);
  const RunResult result =
      RunPciinfo({"--root", Path("box.tar"), "capture", "--redact", Path("safe.tar")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("cannot be redacted"));
  EXPECT_THAT(directory_.Read("safe.tar"), Not(HasSubstr("SECRET")));
}

}  // namespace
