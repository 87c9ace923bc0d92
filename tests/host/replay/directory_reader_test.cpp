// SPDX-License-Identifier: Apache-2.0

// Directories that somebody else changes while they are read.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <set>

#include "host/capture/manifest.h"
#include "host/replay/root_unpack.h"
#include "tests/fakes/run_process.h"
#include "tests/host/swapping.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

using testing::IsSubsetOf;

class DirectoryReaderTest : public testing::Test {
 protected:
  DirectoryReaderTest() {
    fs::create_directories(capture_ / "sys/bus");
    capture_.Write("sys/bus/file", "public");
    secrets_.Write("file", "secret");
  }

  /// What unpacking makes of the file: its content, "missing" or "refused".
  std::string Unpack() const {
    const vtq::TemporaryDirectory tree;
    try {
      CaptureTree unpacked(tree.GetPath());
      UnpackCapture(*OpenCapture(capture_.GetPath()), unpacked);
    } catch (const BadCapture&) {
      return "refused";
    }
    return fs::exists(tree / "sys/bus/file") ? tree.Read("sys/bus/file") : "missing";
  }

  std::set<std::string> UnpackOverAndOver() const {
    std::set<std::string> results;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (std::chrono::steady_clock::now() < end) results.insert(Unpack());
    return results;
  }

  vtq::TemporaryDirectory capture_;
  vtq::TemporaryDirectory secrets_;
};

TEST_F(DirectoryReaderTest, ALinkThatTakesTheFilesPlaceShowsNothing) {
  fs::create_symlink(secrets_ / "file", secrets_ / "link");
  const Swapping swapping(capture_ / "sys/bus/file", secrets_ / "link");
  EXPECT_THAT(UnpackOverAndOver(), IsSubsetOf({"public", "refused"}));
}

TEST_F(DirectoryReaderTest, ALinkThatTakesTheDirectorysPlaceShowsNothing) {
  fs::create_directory_symlink(secrets_.GetPath(), secrets_ / "link");
  const Swapping swapping(capture_ / "sys/bus", secrets_ / "link");
  EXPECT_THAT(UnpackOverAndOver(), IsSubsetOf({"public", "refused"}));
}

TEST_F(DirectoryReaderTest, APipeThatTakesTheFilesPlaceStopsNothing) {
  ASSERT_EQ(mkfifo((secrets_ / "pipe").c_str(), 0600), 0);
  const RunResult child = RunInChild([this] {
    alarm(20);
    const Swapping swapping(capture_ / "sys/bus/file", secrets_ / "pipe");
    const std::set<std::string> results = UnpackOverAndOver();
    return results.count("public") == 1 && results.count("missing") == 0 ? 0 : 1;
  });
  EXPECT_EQ(child.status, 0);
}

TEST_F(DirectoryReaderTest, AFileThatShrinksWhileItIsReadIsRefused) {
  const auto reader = OpenCapture(capture_ / "sys/bus");
  reader->Next();
  reader->Enter();
  ASSERT_EQ(reader->Next()->path, "file");
  capture_.Write("sys/bus/file", "pub");
  EXPECT_EQ(reader->Read(), "pub");
  EXPECT_THROW(reader->Read(), BadCapture);
}

TEST_F(DirectoryReaderTest, ManyLevelsNeedFewOpenFiles) {
  fs::path deep = capture_.GetPath();
  for (int i = 0; i < 400; ++i) deep /= "a";
  fs::create_directories(deep);
  const RunResult child = RunInChild([this] {
    const rlimit few{32, 32};
    setrlimit(RLIMIT_NOFILE, &few);
    const auto reader = OpenCapture(capture_.GetPath());
    int directories = 0;
    for (auto entry = reader->Next(); entry; entry = reader->Next()) {
      if (entry->kind != EntryKind::kDirectory) continue;
      reader->Enter();
      ++directories;
    }
    return directories == 403 ? 0 : 1;
  });
  EXPECT_EQ(child.status, 0);
}

}  // namespace
}  // namespace pciinfo
