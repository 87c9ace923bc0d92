// SPDX-License-Identifier: Apache-2.0
#include "host/replay/archive_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>

#include "host/capture/manifest.h"
#include "tests/host/made_archive.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Key;
using testing::Pair;

std::string ContentOf(ArchiveReader& reader) {
  std::string content;
  for (std::string_view block = reader.Read(); !block.empty(); block = reader.Read()) {
    content += block;
  }
  return content;
}

/// Returns all files of a capture by path; enters every directory.
std::map<std::string, std::string> FilesOf(const std::string& capture) {
  std::map<std::string, std::string> files;
  const auto opened = OpenArchive(capture);
  ArchiveReader& reader = *opened;
  while (const auto entry = reader.Next()) {
    if (entry->kind == EntryKind::kFolder) reader.Enter();
    if (entry->kind == EntryKind::kFile) files[entry->path] = ContentOf(reader);
  }
  return files;
}

std::string FailureOf(const std::string& capture) {
  try {
    FilesOf(capture);
    return "none";
  } catch (const BadCapture& failure) {
    return failure.what();
  }
}

class ArchiveReaderTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return directory_ / name; }

  vtq::TemporaryDirectory directory_;
};

TEST_F(ArchiveReaderTest, EveryCompressionIsRead) {
  const std::string large(200'000, 'x');
  for (const char* filter : {"none", "gzip", "bzip2", "xz", "lzma", "zstd", "lz4"}) {
    MakeArchive(Path("a"), {{"one", "1"}, {"two", large}, {"empty"}}, filter);
    EXPECT_THAT(FilesOf(Path("a")),
                ElementsAre(Pair("empty", ""), Pair("one", "1"), Pair("two", large)))
        << filter;
  }
}

TEST_F(ArchiveReaderTest, KindsOfEntriesAreDistinguished) {
  MakeArchive(Path("a"), {{"f", "1234"},
                          {"d", "", 'd'},
                          {"l", "", 'l', "../x"},
                          {"h", "", 'h', "f"},
                          {"p", "", 'p'},
                          {"c", "", 'c'}});
  const auto opened = OpenArchive(Path("a"));
  ArchiveReader& reader = *opened;
  EXPECT_FALSE(reader.IsDirectory());
  EXPECT_EQ(reader.Next()->size, 4U);
  EXPECT_EQ(reader.Next()->kind, EntryKind::kFolder);
  const auto link = reader.Next();
  EXPECT_EQ(link->kind, EntryKind::kLink);
  EXPECT_EQ(link->target, "../x");
  EXPECT_EQ(reader.Next()->kind, EntryKind::kHardLink);
  EXPECT_EQ(reader.Next()->kind, EntryKind::kOther);
  EXPECT_EQ(reader.Next()->kind, EntryKind::kOther);
  EXPECT_FALSE(reader.Next().has_value());
}

TEST_F(ArchiveReaderTest, ASparseFileHasItsFullSize) {
  MakeSparseArchive(Path("a"), "hole", "5000000");
  EXPECT_LT(fs::file_size(Path("a")), 100'000U);
  const auto opened = OpenArchive(Path("a"));
  ArchiveReader& reader = *opened;
  EXPECT_EQ(reader.Next()->size, 5'000'000U);
  EXPECT_EQ(ContentOf(reader).size(), 5'000'000U);
}

TEST_F(ArchiveReaderTest, ADirectoryIsReadLikeAnArchive) {
  fs::create_directories(Path("d/sub/deep"));
  directory_.Write("d/one", "1");
  directory_.Write("d/sub/deep/two", "2");
  for (const char* name : {"d", "d/", "d/sub/.."}) {
    EXPECT_THAT(FilesOf(Path(name)), ElementsAre(Pair("one", "1"), Pair("sub/deep/two", "2")));
  }
  fs::create_directory_symlink(Path("d"), Path("link"));
  EXPECT_THAT(FilesOf(Path("link")), ElementsAre(Key("one"), Key("sub/deep/two")));
}

TEST_F(ArchiveReaderTest, DirectoriesAreEnteredOnlyOnDemand) {
  fs::create_directories(Path("d/sub"));
  directory_.Write("d/sub/two", "2");
  const auto opened = OpenArchive(Path("d"));
  ArchiveReader& reader = *opened;
  EXPECT_TRUE(reader.IsDirectory());
  EXPECT_EQ(reader.Next()->path, "");
  reader.Enter();
  EXPECT_EQ(reader.Next()->path, "sub");
  EXPECT_FALSE(reader.Next().has_value());
}

TEST_F(ArchiveReaderTest, SpecialFilesOfADirectoryAreNotOpened) {
  fs::create_directory(Path("d"));
  ASSERT_EQ(mkfifo(Path("d/pipe").c_str(), 0600), 0);
  EXPECT_THAT(FilesOf(Path("d")), ElementsAre());
}

TEST_F(ArchiveReaderTest, AFileThatIsNotAnArchiveIsRefused) {
  EXPECT_EQ(FailureOf(Path("nothing")), "No such file or directory");
  EXPECT_THAT(FailureOf(directory_.Write("text", std::string(5000, 'x'))),
              HasSubstr("Unrecognized archive format"));
  EXPECT_NE(FailureOf(directory_.Write("zip", "PK\x03\x04" + std::string(5000, '\0'))), "none");
  EXPECT_THAT(FailureOf("/"), HasSubstr("root directory of this machine"));
}

TEST_F(ArchiveReaderTest, ADamagedArchiveIsRefused) {
  std::string noise;
  for (unsigned i = 0, state = 1; i < 100'000; ++i) {
    state = state * 1664525 + 1013904223;
    noise += static_cast<char>(state >> 24);
  }
  MakeArchive(Path("a"), {{"one", noise}}, "gzip");
  fs::resize_file(Path("a"), 50'000);
  EXPECT_NE(FailureOf(Path("a")), "none");
}

}  // namespace
}  // namespace pciinfo
