// SPDX-License-Identifier: Apache-2.0
#include "host/replay/root_unpack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <system_error>

#include "host/capture/manifest.h"
#include "tests/host/made_archive.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;

class UnpackCaptureTest : public testing::Test {
 protected:
  std::string Unpack(const std::string& capture) {
    const auto opened = OpenCapture(capture);
    CaptureReader& reader = *opened;
    CaptureTree tree(tree_.GetPath());
    return UnpackCapture(reader, tree).manifest.value_or("no manifest");
  }

  std::string Unpack(const std::vector<MadeEntry>& entries) {
    const std::string file = directory_.GetPath() + "/archive";
    MakeArchive(file, entries);
    return Unpack(file);
  }

  std::string RefusalOf(const std::vector<MadeEntry>& entries) {
    try {
      Unpack(entries);
      return "none";
    } catch (const std::runtime_error& failure) {
      return failure.what();
    }
  }

  fs::path Place(const std::string& path) const { return fs::path(tree_.GetPath()) / path; }

  vtq::TemporaryDirectory directory_;
  vtq::TemporaryDirectory tree_;
};

TEST_F(UnpackCaptureTest, ServedPartsAreUnpacked) {
  EXPECT_EQ(Unpack({{"./proc/bus/pci/devices", "list"},
                    {"proc/pci", "old"},
                    {"sys/bus/pci/devices/x/config", "config"},
                    {"commands/lspci -vvv", "output"},
                    {"etc/machine-id", "id"},
                    {"manifest.json", "{}"}}),
            "{}");
  EXPECT_EQ(tree_.Read("proc/bus/pci/devices"), "list");
  EXPECT_EQ(tree_.Read("proc/pci"), "old");
  EXPECT_EQ(tree_.Read("sys/bus/pci/devices/x/config"), "config");
  EXPECT_EQ(tree_.Read("proc/pciinfo/commands/lspci -vvv"), "output");
  EXPECT_EQ(tree_.Read("proc/pciinfo/etc/machine-id"), "id");
}

TEST_F(UnpackCaptureTest, OtherPartsAreNotUnpacked) {
  Unpack({{"ABOUT", "x"},
          {"proc/cpuinfo", "x"},
          {"proc/pciinfo/real", "x"},
          {"proc/bus/pcix", "x"},
          {"system/x", "x"},
          {"etc/hosts", "x"},
          {"sys/x", "x"}});
  EXPECT_TRUE(fs::exists(Place("sys/x")));
  EXPECT_EQ(std::distance(fs::directory_iterator(tree_.GetPath()), {}), 1);
}

TEST_F(UnpackCaptureTest, ADirectoryIsUnpackedLikeAnArchive) {
  fs::create_directories(directory_.GetPath() + "/sys/bus");
  fs::create_directories(directory_.GetPath() + "/proc/bus/pci");
  fs::create_directories(directory_.GetPath() + "/elsewhere");
  fs::create_symlink("/etc/passwd", directory_.GetPath() + "/elsewhere/link");
  fs::create_symlink("/etc/passwd", directory_.GetPath() + "/link");
  directory_.Write("sys/bus/x", "1");
  directory_.Write("proc/bus/pci/devices", "2");
  fs::create_directories(directory_.GetPath() + "/etc");
  fs::create_symlink("/etc/passwd", directory_.GetPath() + "/etc/passwd");
  directory_.Write("etc/machine-id", "3");
  directory_.Write("manifest.json", "{}");
  EXPECT_EQ(Unpack(directory_.GetPath()), "{}");
  EXPECT_EQ(tree_.Read("proc/pciinfo/etc/machine-id"), "3");
  EXPECT_FALSE(fs::exists(Place("etc")));
  EXPECT_EQ(tree_.Read("sys/bus/x"), "1");
  EXPECT_EQ(tree_.Read("proc/bus/pci/devices"), "2");
}

TEST_F(UnpackCaptureTest, LinksInADirectoryObeyTheSameRules) {
  fs::create_directories(directory_.GetPath() + "/sys");
  fs::create_symlink("/etc/passwd", directory_.GetPath() + "/sys/x");
  EXPECT_THROW(Unpack(directory_.GetPath()), BadCapture);
  fs::remove_all(directory_.GetPath() + "/sys");
  fs::create_symlink("/sys", directory_.GetPath() + "/sys");
  EXPECT_THROW(Unpack(directory_.GetPath()), BadCapture);
}

TEST_F(UnpackCaptureTest, ADriversDirectoryIsMadeForItsLink) {
  Unpack({{"sys/bus/pci/devices/x/driver", "", 'l', "../../../../bus/pci/drivers/ahci"}});
  EXPECT_TRUE(fs::is_directory(Place("sys/bus/pci/drivers/ahci")));
  EXPECT_EQ(fs::canonical(Place("sys/bus/pci/devices/x/driver")),
            fs::canonical(Place("sys/bus/pci/drivers/ahci")));
}

TEST_F(UnpackCaptureTest, ALinkMayBeBrokenOrPointToAnExistingFile) {
  Unpack({{"sys/file", "1"},
          {"sys/a/one", "", 'l', "../file"},
          {"sys/a/two", "", 'l', "../file/x"},
          {"sys/a/self", "", 'l', "self"}});
  EXPECT_EQ(tree_.Read("sys/a/one"), "1");
  EXPECT_FALSE(fs::exists(Place("sys/a/two")));
}

TEST_F(UnpackCaptureTest, HostileEntriesAreRefusedEverywhere) {
  EXPECT_THAT(RefusalOf({{"sys/x"}, {"/tmp/x"}}), HasSubstr("absolute path"));
  EXPECT_THAT(RefusalOf({{"sys/x"}, {"sys/../../x"}}), HasSubstr("points outside"));
  EXPECT_THAT(RefusalOf({{"sys/x"}, {"other/../../x"}}), HasSubstr("points outside"));
  EXPECT_THAT(RefusalOf({{"sys/x", "", 'l', "/etc/passwd"}}),
              HasSubstr("links to \"/etc/passwd\""));
  EXPECT_THAT(RefusalOf({{"sys/x", "", 'l', "../etc/passwd"}}), HasSubstr("links to"));
  EXPECT_THAT(RefusalOf({{"commands/lspci", "", 'l', "x"}}), HasSubstr("links to"));
  EXPECT_THAT(RefusalOf({{"manifest.json", "", 'l', "/etc/passwd"}}), HasSubstr("links to"));
  EXPECT_THAT(RefusalOf({{"sys/x", "", 'h', "/etc/passwd"}}), HasSubstr("hard link"));
  EXPECT_THAT(RefusalOf({{"sys/x", "", 'c'}}), HasSubstr("neither a file"));
  EXPECT_THAT(RefusalOf({{"dev/null", "", 'c'}}), HasSubstr("neither a file"));
  EXPECT_THAT(RefusalOf({{"sys/x", "", 'p'}}), HasSubstr("neither a file"));
}

TEST_F(UnpackCaptureTest, NothingIsWrittenThroughALinkOfTheCapture) {
  const std::vector<MadeEntry> entries = {
      {"sys/real/file", "untouched"}, {"sys/link", "", 'l', "real"}, {"sys/link/file", "changed"}};
  EXPECT_THAT(RefusalOf(entries), HasSubstr("sys/link/file"));
  EXPECT_EQ(tree_.Read("sys/real/file"), "untouched");
  EXPECT_THAT(RefusalOf({{"sys/other", "", 'l', "real/file"}, {"sys/other", "changed"}}),
              HasSubstr("sys/other"));
  EXPECT_EQ(tree_.Read("sys/real/file"), "untouched");
}

TEST_F(UnpackCaptureTest, ABombIsRefusedBeforeItIsUnpacked) {
  for (const char* path : {"sys/x", "elsewhere/x"}) {
    const std::string bomb = directory_.GetPath() + "/bomb";
    MakeSparseArchive(bomb, path, "1T");
    EXPECT_THROW(Unpack(bomb), BadCapture);
    EXPECT_FALSE(fs::exists(Place(path)));
  }
}

TEST_F(UnpackCaptureTest, AManifestOfManyBytesIsRefused) {
  EXPECT_THAT(RefusalOf({{"manifest.json", std::string((1 << 20) + 1, ' ')}}),
              HasSubstr("too large"));
}

TEST_F(UnpackCaptureTest, AnEmptyCaptureIsRefused) {
  EXPECT_THAT(RefusalOf({{"box/devices", "x"}}), HasSubstr("contains no proc/bus/pci"));
  EXPECT_EQ(Unpack({{"manifest.json", "{}"}}), "{}");
}

TEST_F(UnpackCaptureTest, ACaptureInAFolderIsRefusedWithAdvice) {
  for (const char* part : {"proc/bus/pci/devices", "sys", "commands/lspci", "manifest.json"}) {
    EXPECT_THAT(RefusalOf({{std::string("box/") + part, "x"}}),
                HasSubstr("its parts are in the folder \"box\"; unpack it"))
        << part;
  }
}

TEST_F(UnpackCaptureTest, AFileInPlaceOfADirectoryIsRefused) {
  EXPECT_THAT(RefusalOf({{"sys", "x"}, {"sys/x", "y"}}), HasSubstr("sys/x"));
}

}  // namespace
}  // namespace pciinfo
