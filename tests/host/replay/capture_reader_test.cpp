// SPDX-License-Identifier: Apache-2.0
#include "host/replay/capture_reader.h"

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

std::string ContentOf(CaptureReader& reader) {
  std::string content;
  for (std::string_view block = reader.Read(); !block.empty(); block = reader.Read()) {
    content += block;
  }
  return content;
}

/// Returns all files of a capture by path; enters every directory.
std::map<std::string, std::string> FilesOf(const std::string& capture) {
  std::map<std::string, std::string> files;
  const auto opened = OpenCapture(capture);
  CaptureReader& reader = *opened;
  while (const auto entry = reader.Next()) {
    if (entry->kind == EntryKind::kDirectory) reader.Enter();
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

class CaptureReaderTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return directory_ / name; }

  vtq::TemporaryDirectory directory_;
};

TEST_F(CaptureReaderTest, EveryCompressionIsRead) {
  const std::string large(200'000, 'x');
  for (const char* filter : {"none", "gzip", "bzip2", "xz", "lzma", "zstd", "lz4"}) {
    MakeArchive(Path("a"), {{"one", "1"}, {"two", large}, {"empty"}}, filter);
    EXPECT_THAT(FilesOf(Path("a")),
                ElementsAre(Pair("empty", ""), Pair("one", "1"), Pair("two", large)))
        << filter;
  }
}

TEST_F(CaptureReaderTest, KindsOfEntriesAreDistinguished) {
  MakeArchive(Path("a"), {{"f", "1234"},
                          {"d", "", 'd'},
                          {"l", "", 'l', "../x"},
                          {"h", "", 'h', "f"},
                          {"p", "", 'p'},
                          {"c", "", 'c'}});
  const auto opened = OpenCapture(Path("a"));
  CaptureReader& reader = *opened;
  EXPECT_FALSE(reader.IsDirectory());
  EXPECT_EQ(reader.Next()->size, 4U);
  EXPECT_EQ(reader.Next()->kind, EntryKind::kDirectory);
  const auto link = reader.Next();
  EXPECT_EQ(link->kind, EntryKind::kLink);
  EXPECT_EQ(link->target, "../x");
  EXPECT_EQ(reader.Next()->kind, EntryKind::kHardLink);
  EXPECT_EQ(reader.Next()->kind, EntryKind::kOther);
  EXPECT_EQ(reader.Next()->kind, EntryKind::kOther);
  EXPECT_FALSE(reader.Next().has_value());
}

TEST_F(CaptureReaderTest, ASparseFileHasItsFullSize) {
  MakeSparseArchive(Path("a"), "hole", "5000000");
  EXPECT_LT(fs::file_size(Path("a")), 100'000U);
  const auto opened = OpenCapture(Path("a"));
  CaptureReader& reader = *opened;
  EXPECT_EQ(reader.Next()->size, 5'000'000U);
  EXPECT_EQ(ContentOf(reader).size(), 5'000'000U);
}

TEST_F(CaptureReaderTest, ADirectoryIsReadLikeAnArchive) {
  fs::create_directories(Path("d/sub/deep"));
  directory_.Write("d/one", "1");
  directory_.Write("d/sub/deep/two", "2");
  for (const char* name : {"d", "d/", "d/sub/.."}) {
    EXPECT_THAT(FilesOf(Path(name)), ElementsAre(Pair("one", "1"), Pair("sub/deep/two", "2")));
  }
  fs::create_directory_symlink(Path("d"), Path("link"));
  EXPECT_THAT(FilesOf(Path("link")), ElementsAre(Key("one"), Key("sub/deep/two")));
}

TEST_F(CaptureReaderTest, DirectoriesAreEnteredOnlyOnDemand) {
  fs::create_directories(Path("d/sub"));
  directory_.Write("d/sub/two", "2");
  const auto opened = OpenCapture(Path("d"));
  CaptureReader& reader = *opened;
  EXPECT_TRUE(reader.IsDirectory());
  EXPECT_EQ(reader.Next()->path, "");
  reader.Enter();
  EXPECT_EQ(reader.Next()->path, "sub");
  EXPECT_FALSE(reader.Next().has_value());
}

TEST_F(CaptureReaderTest, SpecialFilesOfADirectoryAreNotOpened) {
  fs::create_directory(Path("d"));
  ASSERT_EQ(mkfifo(Path("d/pipe").c_str(), 0600), 0);
  EXPECT_THAT(FilesOf(Path("d")), ElementsAre());
}

TEST_F(CaptureReaderTest, AFileThatIsNotAnArchiveIsRefused) {
  EXPECT_EQ(FailureOf(Path("nothing")), "No such file or directory");
  EXPECT_THAT(FailureOf(directory_.Write("text", std::string(5000, 'x'))),
              HasSubstr("it is no archive that is known here"));
  EXPECT_NE(FailureOf(directory_.Write("zip", "PK\x03\x04" + std::string(5000, '\0'))), "none");
  EXPECT_THAT(FailureOf("/"), HasSubstr("root directory of this machine"));
}

TEST_F(CaptureReaderTest, ADamagedArchiveIsRefused) {
  std::string noise;
  for (unsigned i = 0, state = 1; i < 100'000; ++i) {
    state = state * 1664525 + 1013904223;
    noise += static_cast<char>(state >> 24);
  }
  MakeArchive(Path("a"), {{"one", noise}}, "gzip");
  fs::resize_file(Path("a"), 50'000);
  EXPECT_NE(FailureOf(Path("a")), "none");
}

class EveryCut : public CaptureReaderTest, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Filters, EveryCut,
                         testing::Values("none", "gzip", "bzip2", "xz", "lzma", "zstd", "lz4"));

TEST_P(EveryCut, OfAnArchiveIsRefused) {
  MakeArchive(Path("a"), {{"one", "1"}, {"two", "", 'd'}, {"three", "", 'l', "one"}}, GetParam());
  const std::string whole = directory_.Read("a");
  ASSERT_EQ(FailureOf(Path("a")), "none");
  // What follows the mark at the end is padding.
  const bool isPlain = GetParam() == std::string("none");
  const std::size_t end = isPlain ? whole.find_last_not_of('\0') / 512 * 512 + 1536 : whole.size();
  for (std::size_t size = 0; size < end; ++size) {
    ASSERT_NE(FailureOf(directory_.Write("cut", whole.substr(0, size))), "none") << size;
  }
}

TEST_F(CaptureReaderTest, WhatFollowsTheEndIsNotOverlooked) {
  MakeArchive(Path("a"), {{"one", "1"}});
  MakeArchive(Path("b"), {{"two", "2"}});
  directory_.Write("both", directory_.Read("a") + directory_.Read("b"));
  EXPECT_THAT(FilesOf(Path("both")), ElementsAre(Key("one"), Key("two")));
  directory_.Write("more", directory_.Read("a") + std::string(512, 'x'));
  EXPECT_NE(FailureOf(Path("more")), "none");
}

}  // namespace
}  // namespace pciinfo
