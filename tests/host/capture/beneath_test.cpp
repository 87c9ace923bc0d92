// SPDX-License-Identifier: Apache-2.0
#include "host/capture/beneath.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

using testing::IsEmpty;
using testing::UnorderedElementsAre;
using vtq::FileDescriptor;

using Open = FileDescriptor (*)(const FileDescriptor& directory, const std::string& path, int flags,
                                mode_t mode);

/// With the kernel's own call and without.
class Beneath : public testing::TestWithParam<Open> {
 protected:
  Beneath() {
    fs::create_directories(directory_ / "a/b");
    directory_.Write("a/b/c", "1");
  }

  FileDescriptor OpenFile(const std::string& path, int flags = O_RDONLY) const {
    return GetParam()(root_, path, flags, 0600);
  }

  vtq::TemporaryDirectory directory_;
  FileDescriptor root_{open(directory_.GetPath().c_str(), O_PATH | O_DIRECTORY)};
};

INSTANTIATE_TEST_SUITE_P(Ways, Beneath, testing::Values(&OpenBeneath, &OpenStepByStep));

TEST_P(Beneath, FilesAreOpenedAndMade) {
  EXPECT_TRUE(OpenFile("a/b/c").IsOpen());
  EXPECT_TRUE(OpenFile("a/b", O_RDONLY | O_DIRECTORY).IsOpen());
  EXPECT_TRUE(OpenFile("a/new", O_WRONLY | O_CREAT).IsOpen());
  EXPECT_TRUE(fs::exists(directory_ / "a/new"));
}

TEST_P(Beneath, MissingFilesAreSaid) {
  EXPECT_FALSE(OpenFile("a/x/c").IsOpen());
  EXPECT_EQ(errno, ENOENT);
  EXPECT_FALSE(OpenFile("a/x").IsOpen());
  EXPECT_EQ(errno, ENOENT);
}

TEST_P(Beneath, NoLinkIsFollowed) {
  fs::create_directory_symlink("b", directory_ / "a/inner");
  fs::create_symlink("b/c", directory_ / "a/file");
  for (const char* path : {"a/inner/c", "a/inner", "a/file"}) {
    EXPECT_FALSE(OpenFile(path).IsOpen()) << path;
  }
}

TEST(DirectoriesBeneath, TheirNamesAreListedTwiceAlike) {
  const vtq::TemporaryDirectory directory;
  directory.Write("one", "");
  fs::create_directory(directory / "two");
  const FileDescriptor opened(open(directory.GetPath().c_str(), O_RDONLY | O_DIRECTORY));
  EXPECT_THAT(NamesIn(opened), UnorderedElementsAre("one", "two"));
  EXPECT_THAT(NamesIn(opened), UnorderedElementsAre("one", "two"));
}

TEST(DirectoriesBeneath, TheirContentIsRemovedButNotWhatLinksPointTo) {
  const vtq::TemporaryDirectory outside;
  outside.Write("victim", "1");
  const vtq::TemporaryDirectory directory;
  fs::create_directories(directory / "a/b");
  directory.Write("a/b/c", "1");
  fs::create_directory_symlink(outside.GetPath(), directory / "a/link");
  RemoveContent(FileDescriptor(open(directory.GetPath().c_str(), O_RDONLY | O_DIRECTORY)));
  EXPECT_THAT(directory.Names(), IsEmpty());
  EXPECT_EQ(outside.Read("victim"), "1");
}

}  // namespace
}  // namespace pciinfo
