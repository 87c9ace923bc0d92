// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_target.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <thread>
#include <utility>

#include "host/base/errors.h"
#include "host/replay/root_namespace.h"
#include "tests/fakes/run_process.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

TEST(TargetForm, FollowsFromTheName) {
  EXPECT_EQ(FormOf("-").kind, TargetKind::kStandardOutput);
  EXPECT_EQ(FormOf("a/b.tar").kind, TargetKind::kArchive);
  EXPECT_EQ(FormOf("b.tar").compression, Compression::kNone);
  EXPECT_EQ(FormOf("b.tar.gz").compression, Compression::kGzip);
  EXPECT_EQ(FormOf("b.tgz").compression, Compression::kGzip);
  EXPECT_EQ(FormOf("b.tar.zst").compression, Compression::kZstd);
  EXPECT_EQ(FormOf("b").kind, TargetKind::kDirectory);
  EXPECT_EQ(FormOf("b.d").kind, TargetKind::kDirectory);
  EXPECT_EQ(FormOf("x.tar.d/b").kind, TargetKind::kDirectory);
}

TEST(TargetForm, OtherArchivesAreRefused) {
  for (const char* name : {"b.tar.xz", "a/b.tar.bz2", "b.zip"}) {
    EXPECT_THROW(FormOf(name), UsageError) << name;
  }
}

class CaptureTargetTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return directory_ / name; }

  std::string Refusal(const std::string& name) const {
    try {
      CaptureTarget target(Path(name));
      return "none";
    } catch (const UsageError& error) {
      return error.what();
    }
  }

  vtq::TemporaryDirectory directory_;
};

TEST_F(CaptureTargetTest, AnArchiveIsVisibleOnlyAfterCommit) {
  for (const char* before : {"", "old"}) {
    if (*before != '\0') directory_.Write("a.tar.gz", before);
    const auto names = directory_.Names();
    CaptureTarget target(Path("a.tar.gz"));
    target.GetWriter().Write({"x", "1", ""});
    EXPECT_EQ(directory_.Names(), names);
    EXPECT_EQ(directory_.Read("a.tar.gz"), before);
    target.GetWriter().Finish();
    target.Commit();
    EXPECT_THAT(directory_.Names(), ElementsAre("a.tar.gz"));
    EXPECT_NE(directory_.Read("a.tar.gz"), before);
    fs::remove(Path("a.tar.gz"));
  }
}

/// An unnamed file gets its name by a link in /proc.
TEST_F(CaptureTargetTest, WithoutProcAnArchiveHasATemporaryName) {
  const RunResult child = RunInChild([this] {
    EnterNamespaces();
    MountMemory("/proc");
    CaptureTarget target(Path("a.tar"));
    EXPECT_THAT(directory_.Names(), ElementsAre(StartsWith("a.tar.part-")));
    target.GetWriter().Finish();
    target.Commit();
    EXPECT_THAT(directory_.Names(), ElementsAre("a.tar"));
    { const CaptureTarget abandoned(Path("b.tar")); }
    EXPECT_THAT(directory_.Names(), ElementsAre("a.tar"));
    return HasFailure() ? 1 : 0;
  });
  EXPECT_EQ(child.status, 0) << child.out;
}

TEST_F(CaptureTargetTest, ADirectoryHasItsNameOnlyAfterCommit) {
  CaptureTarget target(Path("d"));
  target.GetWriter().Write({"x", "1", ""});
  EXPECT_THAT(directory_.Names(), ElementsAre(StartsWith("d.part-")));
  target.Commit();
  EXPECT_THAT(directory_.Names(), ElementsAre("d"));
}

TEST_F(CaptureTargetTest, AnotherProcessMayWriteIt) {
  for (const char* name : {"a.tar", "d"}) {
    {
      CaptureTarget target(Path(name));
      const RunResult child = RunInChild([&target] {
        target.GetWriter().Write({"x", "1", ""});
        target.GetWriter().Finish();
        target.Commit();
        return 0;
      });
      EXPECT_EQ(child.status, 0);
    }
    EXPECT_THAT(directory_.Names(), ElementsAre(name));
    EXPECT_FALSE(fs::is_empty(Path(name)));
    fs::remove_all(Path(name));
  }
}

/// A child that holds what it wrote when it is killed.
TEST_F(CaptureTargetTest, NothingIsLeftOfAnotherProcessThatFails) {
  for (const char* name : {"a.tar", "d"}) {
    {
      CaptureTarget target(Path(name));
      RunInChild([&target]() -> int {
        target.GetWriter().Write({"x/y", "1", ""});
        _exit(1);
      });
    }
    EXPECT_THAT(directory_.Names(), IsEmpty());
  }
}

/// Replaces the directory that is being written by a link to `victim`, as another user can who may
/// write to its parent directory.
void ReplaceByLink(const vtq::TemporaryDirectory& directory, const std::string& victim) {
  const std::string name = directory.Names().front();
  fs::rename(directory / name, directory / "moved");
  fs::create_directory_symlink(victim, directory / name);
}

TEST_F(CaptureTargetTest, NothingIsWrittenWhereALinkTakesTheDirectorysPlace) {
  const vtq::TemporaryDirectory victim;
  {
    CaptureTarget target(Path("d"));
    ReplaceByLink(directory_, victim.GetPath());
    target.GetWriter().Write({"x", "1", ""});
    EXPECT_THROW(target.Commit(), std::runtime_error);
  }
  EXPECT_THAT(victim.Names(), IsEmpty());
  EXPECT_EQ(directory_.Read("moved/x"), "1");
}

TEST_F(CaptureTargetTest, NothingIsRemovedWhereADirectoryTakesThatPlace) {
  {
    CaptureTarget target(Path("d"));
    const std::string part = directory_.Names().front();
    fs::rename(Path(part), Path("moved"));
    fs::create_directory(Path(part));
    directory_.Write(part + "/precious", "1");
  }
  EXPECT_EQ(directory_.Names().size(), 2U);
  EXPECT_TRUE(fs::exists(Path("moved")));
}

/// Another thread that puts a link to the victim in the place of each new directory that it sees.
class LinkingAttacker final {
 public:
  LinkingAttacker(std::string directory, std::string victim)
      : thread_([this, directory = std::move(directory), victim = std::move(victim)] {
          while (!isOver_) Attack(directory, victim);
        }) {}
  LinkingAttacker(const LinkingAttacker&) = delete;
  LinkingAttacker& operator=(const LinkingAttacker&) = delete;
  ~LinkingAttacker() {
    isOver_ = true;
    thread_.join();
  }

 private:
  static void Attack(const fs::path& directory, const std::string& victim) {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(directory, ignored)) {
      const fs::path path = entry.path();
      if (path.filename().string().find(".part-") == std::string::npos) continue;
      fs::rename(path, directory / "moved", ignored);
      fs::create_directory_symlink(victim, path, ignored);
    }
  }

  std::atomic<bool> isOver_ = false;
  std::thread thread_;
};

TEST_F(CaptureTargetTest, NothingIsWrittenElsewhereWhoeverIsFaster) {
  const vtq::TemporaryDirectory victim;
  const LinkingAttacker attacker(directory_.GetPath(), victim.GetPath());
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
  while (std::chrono::steady_clock::now() < end) {
    try {
      CaptureTarget target(Path("d"));
      std::this_thread::sleep_for(std::chrono::milliseconds(1));  // a worker is started
      target.GetWriter().Write({"x", "1", ""});
      target.Commit();
    } catch (const std::runtime_error&) {
      // The attacker was faster.
    }
    std::error_code ignored;
    fs::remove_all(Path("d"), ignored);
    fs::remove_all(Path("moved"), ignored);
  }
  EXPECT_THAT(victim.Names(), IsEmpty());
}

TEST_F(CaptureTargetTest, AnUncommittedCaptureIsRemoved) {
  for (const char* name : {"a.tar.gz", "d"}) {
    {
      CaptureTarget target(Path(name));
      target.GetWriter().Write({"x/y", "1", ""});
    }
    EXPECT_THAT(directory_.Names(), IsEmpty());
  }
}

TEST_F(CaptureTargetTest, OnlyTheOwnerMayReadIt) {
  CaptureTarget archive(Path("a.tar"));
  archive.GetWriter().Finish();
  archive.Commit();
  CaptureTarget directory(Path("d/"));
  directory.GetWriter().Finish();
  directory.Commit();
  EXPECT_EQ(fs::status(Path("a.tar")).permissions(), fs::perms{0600});
  EXPECT_EQ(fs::status(Path("d")).permissions(), fs::perms{0700});
}

TEST_F(CaptureTargetTest, AnOldArchiveIsReplacedAndAnEmptyDirectoryUsed) {
  directory_.Write("a.tar", "old");
  CaptureTarget archive(Path("a.tar"));
  EXPECT_EQ(fs::file_size(Path("a.tar")), 3U);
  archive.GetWriter().Finish();
  archive.Commit();
  EXPECT_GT(fs::file_size(Path("a.tar")), 3U);
  fs::create_directory(Path("d"));
  CaptureTarget directory(Path("d"));
  directory.GetWriter().Write({"x", "1", ""});
  directory.GetWriter().Finish();
  directory.Commit();
  EXPECT_TRUE(fs::exists(Path("d/x")));
}

TEST_F(CaptureTargetTest, OtherExistingFilesAreNotChanged) {
  fs::create_directories(Path("full/x"));
  fs::create_directory(Path("directory.tar"));
  directory_.Write("file", "x");
  ASSERT_EQ(mkfifo(Path("pipe.tar").c_str(), 0600), 0);
  EXPECT_THAT(Refusal("full"), HasSubstr("is not empty"));
  EXPECT_THAT(Refusal("full/"), HasSubstr("is not empty"));
  EXPECT_THAT(Refusal("directory.tar"), HasSubstr("is not a regular file"));
  EXPECT_THAT(Refusal("pipe.tar"), HasSubstr("is not a regular file"));
  EXPECT_THAT(Refusal("file"), HasSubstr("is not a directory"));
  EXPECT_THAT(Refusal("b.tar.xz"), HasSubstr(".tar.zst"));
  EXPECT_EQ(directory_.Names().size(), 4U);
}

TEST_F(CaptureTargetTest, AnUnwritableDestinationIsNamed) {
  for (const char* name : {"nowhere/a.tar", "nowhere/d"}) {
    try {
      CaptureTarget target(Path(name));
      FAIL();
    } catch (const std::system_error& error) {
      EXPECT_THAT(error.what(), HasSubstr(Path(name)));
    }
  }
  EXPECT_THROW(CaptureTarget(""), UsageError);
}

}  // namespace
}  // namespace pciinfo
