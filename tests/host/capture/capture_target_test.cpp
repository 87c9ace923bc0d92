// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_target.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <iterator>
#include <system_error>

#include "host/base/errors.h"
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

TEST_F(CaptureTargetTest, TheNameExistsOnlyAfterCommit) {
  for (const std::string name : {"a.tar.gz", "d"}) {
    CaptureTarget target(Path(name));
    target.GetWriter().Write({"x", "1", ""});
    EXPECT_THAT(directory_.Names(), ElementsAre(StartsWith(name + ".part-")));
    target.GetWriter().Finish();
    target.Commit();
    EXPECT_THAT(directory_.Names(), ElementsAre(name));
    fs::remove_all(Path(name));
  }
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
  CaptureTarget folder(Path("d/"));
  folder.GetWriter().Finish();
  folder.Commit();
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
  CaptureTarget folder(Path("d"));
  folder.GetWriter().Write({"x", "1", ""});
  folder.GetWriter().Finish();
  folder.Commit();
  EXPECT_TRUE(fs::exists(Path("d/x")));
}

TEST_F(CaptureTargetTest, OtherExistingFilesAreNotChanged) {
  fs::create_directories(Path("full/x"));
  fs::create_directory(Path("folder.tar"));
  directory_.Write("file", "x");
  ASSERT_EQ(mkfifo(Path("pipe.tar").c_str(), 0600), 0);
  EXPECT_THAT(Refusal("full"), HasSubstr("is not empty"));
  EXPECT_THAT(Refusal("full/"), HasSubstr("is not empty"));
  EXPECT_THAT(Refusal("folder.tar"), HasSubstr("is not a regular file"));
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
