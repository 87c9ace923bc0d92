// SPDX-License-Identifier: Apache-2.0

// What plug-ins and the tools that they start may do, in live views and with --root.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/replay/root.h"
#include "tests/host/made_archive.h"
#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

using testing::AllOf;
using testing::Each;
using testing::HasSubstr;
using testing::Not;

class Rights : public testing::Test {
 protected:
  Rights() {
    MakeArchive(Archive(), {{"proc/bus/pci/devices", ""}, {"manifest.json", kManifest}}, "gzip");
    fs::create_directories(directory_ / "box/proc/bus/pci");
  }

  static constexpr const char* kManifest = R"({"formatVersion": 1, "systemName": "box"})";

  std::string Archive() const { return directory_ / "capture.tar.gz"; }
  std::string Directory() const { return directory_ / "box"; }

  /// What the shell command prints when a plug-in runs it.
  static std::string Run(const std::string& command, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"instances", "QZMSG_PCIDevice"});
    return RunFake("hostile", options,
                   {{"HOSTILE", "RunCommand QZMSG_PCIDevice"}, {"HOSTILE_COMMAND", command}})
        .out;
  }

  vtq::TemporaryDirectory directory_;
};

TEST_F(Rights, AToolThatReadsACaptureHasNone) {
  for (const std::string& capture : {Archive(), Directory()}) {
    const std::string status = Run("cat /proc/self/status", {"--root", capture});
    for (const char* set : {"CapInh", "CapPrm", "CapEff", "CapBnd", "CapAmb"}) {
      EXPECT_THAT(status, HasSubstr(std::string(set) + ":\t0000000000000000\n"));
    }
    EXPECT_THAT(status, HasSubstr("NoNewPrivs:\t1\n"));
    EXPECT_THAT(status, HasSubstr("Seccomp:\t2\n"));
  }
}

TEST_F(Rights, AToolThatReadsThisMachineMayReadOnly) {
  const std::string status = Run("cat /proc/self/status");
  // Reading every file, and what the kernel wants for whole configuration spaces.
  const char* const kept =
      geteuid() == 0 ? "CapEff:\t0000000000200004\n" : "CapEff:\t0000000000000000\n";
  EXPECT_THAT(status, HasSubstr(kept));
  EXPECT_THAT(status, HasSubstr("NoNewPrivs:\t1\n"));
  EXPECT_THAT(status, HasSubstr("Seccomp:\t2\n"));
}

// Where files of profiles and reports are written, there are no rules for files.
#ifndef PCIINFO_SANITIZED
TEST_F(Rights, AToolThatReadsACaptureIsNotRoot) {
  EXPECT_THAT(Run("id -u", {"--root", Archive()}), Not(testing::StartsWith("0\n")));
  EXPECT_THAT(Run("id -G", {"--root", Archive()}), Not(testing::StartsWith("0")));
}

TEST_F(Rights, NobodyWritesOutsideTheScratchDirectory) {
  const std::string file = directory_.Write("old", "content");
  fs::permissions(file, fs::perms::all);
  fs::permissions(directory_.GetPath(), fs::perms::all);
  const std::string harm = "echo changed >" + file + "; touch " + (directory_ / "new") +
                           "; chmod 0 " + file + "; rm -f " + file + "; echo done";
  for (const std::vector<std::string>& options :
       std::vector<std::vector<std::string>>{{}, {"--root", Archive()}, {"--root", Directory()}}) {
    EXPECT_THAT(Run(harm + "; echo own >own && cat own 2>/dev/null", options),
                HasSubstr("done\nown\n"));
    EXPECT_EQ(directory_.Read("old"), "content");
    EXPECT_FALSE(fs::exists(directory_ / "new"));
  }
}

TEST_F(Rights, APlugInThatOnlyRootCanReadIsLoaded) {
  fs::copy_file(FakePluginFile("fixed"), directory_ / "own.pi.so");
  fs::copy_file(FAKE_PLUGINS "fixed.classes.json", directory_ / "own.classes.json");
  fs::permissions(directory_.GetPath(), fs::perms::owner_all);
  for (const std::string& capture : {Archive(), Directory()}) {
    const RunResult result =
        RunPciinfo({"devices", "--root", capture, "--only-plugin", directory_ / "own.pi.so"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("ADDRESS"));
  }
}
#endif

TEST_F(Rights, NothingOfThisMachineIsSeenInACapture) {
  for (const std::string& capture : {Archive(), Directory()}) {
    const std::vector<std::string> options = {"--root", capture};
    EXPECT_THAT(LinesOf(Run("ls -A /dev", options)),
                testing::IsSupersetOf({"null", "zero", "urandom", "fd"}));
    EXPECT_THAT(
        LinesOf(Run("echo /dev/* | tr ' ' '\\n' | grep -E 'mem|port|vd|sd|shm|kvm'", options)),
        Each(Not(HasSubstr("/dev/"))));
    EXPECT_THAT(Run("ls -A /etc | grep -vE '^(ld.so.cache|alternatives|hosts|machine-id|udev)$' | "
                    "sed s/^/live:/; "
                    "find /run /boot /lib/modules -mindepth 1 | sed s/^/live:/; "
                    "for f in /proc/[a-z]*; do echo $f; done | grep -vE "
                    "'^/proc/(bus|pciinfo|self|thread-self)$' | sed s/^/live:/",
                    options),
                Not(HasSubstr("live:")));
    EXPECT_THAT(Run("uname -n | sed s/^/name:/", options), HasSubstr("name:\n"));
  }
}

TEST_F(Rights, ProgramsAndTheListOfNamesStay) {
  const std::string seen =
      Run("lspci --version; test -s /usr/share/misc/pci.ids && echo names; "
          "test -e /proc/self/exe && echo self; head -c 4 /dev/zero | wc -c",
          {"--root", Archive()});
  EXPECT_THAT(seen, AllOf(HasSubstr("lspci version"), HasSubstr("self\n"), HasSubstr("4\n")));
  EXPECT_EQ(seen.find("names\n") != std::string::npos, fs::exists("/usr/share/misc/pci.ids"));
}

/// Whether the captured /proc/bus/pci is there already when the rights are given up.
bool IsReadBeforeConfining(const std::string& capture) {
  const RunResult child = RunInChild([&capture] {
    bool isRead = false;
    pciinfo::ServeRoot(capture, {.confine = [&](const std::vector<std::string>& /*writable*/) {
                         isRead = fs::exists("/proc/bus/pci");
                       }});
    return fs::exists("/proc/bus/pci") ? (isRead ? 1 : 0) : 2;
  });
  EXPECT_LE(child.status, 1);
  return child.status == 1;
}

TEST_F(Rights, AnArchiveIsParsedWithoutRights) { EXPECT_FALSE(IsReadBeforeConfining(Archive())); }

// Only its owner may be able to read it.
TEST_F(Rights, ADirectoryIsReadWithTheUsersRights) {
  EXPECT_TRUE(IsReadBeforeConfining(Directory()));
}

TEST_F(Rights, CapturesAreWrittenWhereTheirUserCan) {
  // Owned by somebody else, so that root reaches it by its capabilities only.
  const std::string place = directory_ / "place";
  fs::create_directory(place);
  fs::permissions(place, fs::perms::owner_all);
  EXPECT_EQ(geteuid() == 0 ? chown(place.c_str(), 12345, 12345) : 0, 0);
  for (const char* name : {"/live.tar", "/live"}) {
    const RunResult result = RunPciinfo({"capture", place + name});
    EXPECT_TRUE(fs::exists(place + name)) << result.err;
  }
  for (const char* name : {"/again.tar.zst", "/again"}) {
    const RunResult result = RunPciinfo({"capture", "--root", Archive(), place + name});
    EXPECT_TRUE(fs::exists(place + name)) << result.err;
  }
  EXPECT_TRUE(fs::exists(place + "/again/manifest.json"));
}

}  // namespace
