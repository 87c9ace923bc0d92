// SPDX-License-Identifier: Apache-2.0
#include "host/replay/archive_entry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/capture/manifest.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;

std::string RefusalOf(const ArchiveEntry& entry, const CaptureLimits& limits = {}) {
  try {
    EntryGate(limits).Admit(entry);
    return "admitted";
  } catch (const BadCapture& refusal) {
    return refusal.what();
  }
}

ArchiveEntry File(const std::string& path, std::uint64_t size = 0) {
  return {path, EntryKind::kFile, "", size};
}

TEST(EntryGate, PathsAreNormalised) {
  EntryGate gate;
  EXPECT_EQ(gate.Admit(File("sys/bus")), "sys/bus");
  EXPECT_EQ(gate.Admit(File("./sys/./bus//x")), "sys/bus/x");
  EXPECT_EQ(gate.Admit({"./", EntryKind::kDirectory, "", 0}), "");
  EXPECT_EQ(gate.Admit({"sys/", EntryKind::kDirectory, "", 0}), "sys");
  EXPECT_EQ(gate.Admit(File("commands/lspci -vvv")), "commands/lspci -vvv");
  EXPECT_EQ(gate.Admit(File("sys/...")), "sys/...");
}

TEST(EntryGate, PathsThatLeaveTheCaptureAreRefused) {
  EXPECT_THAT(RefusalOf(File("/etc/passwd")), HasSubstr("\"/etc/passwd\" has an absolute path"));
  EXPECT_THAT(RefusalOf(File("//x")), HasSubstr("absolute"));
  for (const char* path : {"..", "../x", "sys/../../x", "sys/..", "./../x"}) {
    EXPECT_THAT(RefusalOf(File(path)), HasSubstr("points outside the capture")) << path;
  }
}

TEST(EntryGate, OnlyFilesDirectoriesAndInnerLinksPass) {
  EXPECT_THAT(RefusalOf({"sys/x", EntryKind::kHardLink, "sys/y", 0}), HasSubstr("hard link"));
  EXPECT_THAT(RefusalOf({"sys/x", EntryKind::kOther, "", 0}), HasSubstr("neither a file"));
  EXPECT_THAT(RefusalOf({"sys/x", EntryKind::kLink, "/etc/passwd", 0}),
              HasSubstr("links to \"/etc/passwd\""));
  EXPECT_EQ(RefusalOf({"sys/x", EntryKind::kLink, "y", 0}), "admitted");
}

TEST(EntryGate, ALongPathIsRefused) {
  EXPECT_EQ(RefusalOf(File(std::string(1024, 'x'))), "admitted");
  EXPECT_THAT(RefusalOf(File(std::string(1025, 'x'))), HasSubstr("more than 1024 bytes"));
}

TEST(EntryGate, ADeepPathIsRefused) {
  std::string path = "sys";
  for (int i = 0; i < 64; ++i) path += "/a";
  EXPECT_EQ(RefusalOf(File(path)), "admitted");
  EXPECT_THAT(RefusalOf(File(path + "/a")), HasSubstr("more than 64 directories"));
  EXPECT_THAT(RefusalOf({"sys/x", EntryKind::kLink, path + "/a", 0}),
              HasSubstr("more than 64 directories"));
}

TEST(EntryGate, EntriesAreCounted) {
  EntryGate gate({2, 100, 100});
  gate.Admit(File("a"));
  gate.Admit(File("a"));
  EXPECT_THROW(gate.Admit(File("a")), BadCapture);
  EXPECT_THAT(RefusalOf(File("a"), {0, 100, 100}), HasSubstr("more than 0 entries"));
}

TEST(EntryGate, BytesAreAddedUpWithoutOverflow) {
  EntryGate gate({100, 13, 100});
  gate.Admit(File("a", 4));
  gate.Admit(File("b", 6));
  gate.Admit(File("c", 0));
  EXPECT_THROW(gate.Admit(File("d", 1)), BadCapture);
  EXPECT_THROW(gate.Admit(File("d", ~std::uint64_t{0})), BadCapture);
  EXPECT_THAT(RefusalOf(File("a", (std::uint64_t{1} << 30) + 1)), HasSubstr("more than 1024 MiB"));
}

TEST(EntryGate, PathsAndTargetsCountAsBytes) {
  EntryGate gate({100, 10, 100});
  gate.Admit({"sys/a", EntryKind::kLink, "b", 0});
  EXPECT_THROW(gate.Admit(File("sys/c")), BadCapture);
}

TEST(EntryGate, DirectoriesThatPathsNeedCountAsEntries) {
  EntryGate gate({10, 100, 100});
  gate.Admit(File("a/b/c"));
  gate.CountDirectories(9);
  EXPECT_THROW(gate.CountDirectories(10), BadCapture);
}

TEST(CaptureLimits, LessMemoryLeavesLess) {
  EXPECT_EQ(LimitsWithin(std::nullopt).bytes, CaptureLimits().bytes);
  EXPECT_EQ(LimitsWithin(std::uint64_t{64} << 30).entries, CaptureLimits().entries);
  EXPECT_EQ(LimitsWithin(128 << 20).bytes, 32U << 20);
  EXPECT_EQ(LimitsWithin(128 << 20).entries, 32768U);
  EXPECT_THAT(RefusalOf(File("a", 33 << 20), LimitsWithin(128 << 20)), HasSubstr("--memory-limit"));
}

TEST(InnerLink, ADriverLinkIsAnInnerLink) {
  EXPECT_TRUE(
      IsInnerLink("sys/bus/pci/devices/0000:00:1f.2/driver", "../../../../bus/pci/drivers/ahci"));
  EXPECT_TRUE(IsInnerLink("sys/bus/pci/devices/0000:00:1f.2", "../../../devices/pci0000:00/x"));
  EXPECT_TRUE(IsInnerLink("sys/a/b", "c"));
  EXPECT_TRUE(IsInnerLink("sys/a/b", "./c/d"));
  EXPECT_TRUE(IsInnerLink("sys/a/b", ".."));
}

TEST(InnerLink, ALinkThatLeavesSysIsNotAnInnerLink) {
  EXPECT_FALSE(IsInnerLink("sys/bus/pci/devices/0000:00:1f.2/driver", "../../../../../etc/passwd"));
  EXPECT_FALSE(IsInnerLink("sys/a/b", "../.."));
  EXPECT_FALSE(IsInnerLink("sys/a", ".."));
  EXPECT_FALSE(IsInnerLink("sys/a/b", "/sys/c"));
  EXPECT_FALSE(IsInnerLink("sys/a/b", ""));
  EXPECT_FALSE(IsInnerLink("sys", "x"));
}

TEST(InnerLink, ALinkWithDotDotAfterANameIsNotAnInnerLink) {
  EXPECT_FALSE(IsInnerLink("sys/a/b/c", "up/../x"));
  EXPECT_FALSE(IsInnerLink("sys/a/b/c", "../up/.."));
}

TEST(InnerLink, LinksOutsideSysAreNotInnerLinks) {
  EXPECT_FALSE(IsInnerLink("proc/bus/pci/00/00.0", "00.1"));
  EXPECT_FALSE(IsInnerLink("commands/lspci", "other"));
  EXPECT_FALSE(IsInnerLink("system/a", "b"));
}

}  // namespace
}  // namespace pciinfo
