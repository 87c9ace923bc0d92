// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_tree.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

class CaptureTreeTest : public testing::Test {
 protected:
  fs::path Path(const std::string& name) const { return fs::path(directory_.GetPath()) / name; }

  vtq::TemporaryDirectory directory_;
  CaptureTree tree_{directory_.GetPath()};
};

TEST_F(CaptureTreeTest, FilesGetTheirDirectories) {
  WriteBytes(tree_.MakeFile("a/b/c"), std::string("1\0002", 3));
  tree_.MakeFile("top");
  EXPECT_EQ(directory_.Read("a/b/c"), std::string("1\0002", 3));
  EXPECT_EQ(fs::file_size(Path("top")), 0U);
}

TEST_F(CaptureTreeTest, AFileIsReplaced) {
  WriteBytes(tree_.MakeFile("a"), "long text");
  WriteBytes(tree_.MakeFile("a"), "new");
  EXPECT_EQ(directory_.Read("a"), "new");
}

TEST_F(CaptureTreeTest, AnExistingDirectoryStays) {
  WriteBytes(tree_.MakeFile("a/b"), "1");
  tree_.MakeDirectory("a");
  tree_.MakeDirectory("c/d");
  EXPECT_EQ(directory_.Read("a/b"), "1");
  EXPECT_TRUE(fs::is_directory(Path("c/d")));
}

TEST_F(CaptureTreeTest, NothingIsWrittenThroughALink) {
  const vtq::TemporaryDirectory outside;
  const std::string victim = outside.Write("victim", "untouched");
  tree_.MakeLink("directory", outside.GetPath());
  tree_.MakeLink("file", victim);
  EXPECT_THROW(tree_.MakeFile("directory/victim"), std::system_error);
  EXPECT_THROW(tree_.MakeFile("file"), std::system_error);
  EXPECT_THROW(tree_.MakeDirectory("directory/new"), std::system_error);
  EXPECT_THROW(tree_.MakeLink("directory/new", "x"), std::system_error);
  EXPECT_EQ(std::ifstream(victim).get(), 'u');
  EXPECT_FALSE(fs::exists(outside.GetPath() + "/new"));
}

TEST_F(CaptureTreeTest, ALinkReplacesNothing) {
  tree_.MakeFile("a");
  EXPECT_THROW(tree_.MakeLink("a", "b"), std::system_error);
  EXPECT_FALSE(fs::is_symlink(Path("a")));
}

TEST_F(CaptureTreeTest, AFailureNamesThePath) {
  tree_.MakeFile("a");
  try {
    tree_.MakeFile("a/b");
    FAIL();
  } catch (const std::system_error& failure) {
    EXPECT_NE(std::string(failure.what()).find("a/b"), std::string::npos);
  }
  EXPECT_THROW(CaptureTree("/no/such/directory"), std::system_error);
}

}  // namespace
}  // namespace pciinfo
