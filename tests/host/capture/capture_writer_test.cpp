// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_writer.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <stdexcept>

#include "host/console/output.h"
#include "host/replay/capture_reader.h"
#include "runtime/file_descriptor.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

/// Paths and contents of a capture; "-> target" for links.
std::map<std::string, std::string> PartsOf(const std::string& capture) {
  std::map<std::string, std::string> parts;
  const auto opened = OpenCapture(capture);
  CaptureReader& reader = *opened;
  while (const auto entry = reader.Next()) {
    if (entry->kind == EntryKind::kDirectory) reader.Enter();
    if (entry->kind == EntryKind::kLink) parts[entry->path] = "-> " + entry->target;
    if (entry->kind != EntryKind::kFile) continue;
    std::string& content = parts[entry->path];
    for (auto block = reader.Read(); !block.empty(); block = reader.Read()) content += block;
  }
  return parts;
}

void WriteParts(CaptureWriter& writer) {
  writer.Write({"proc/bus/pci/00/00.0", std::string("\0\xFF", 2), ""});
  writer.Write({"commands/lspci -vvv", std::string(300'000, 'x'), ""});
  writer.Write({"sys/empty", "", ""});
  writer.Write({"sys/a/driver", "", "../drivers/b"});
  writer.Finish();
}

const std::map<std::string, std::string> kParts = {
    {"proc/bus/pci/00/00.0", std::string("\0\xFF", 2)},
    {"commands/lspci -vvv", std::string(300'000, 'x')},
    {"sys/empty", ""},
    {"sys/a/driver", "-> ../drivers/b"}};

TEST(CaptureWriter, ArchivesHoldWhatWasWritten) {
  const vtq::TemporaryDirectory directory;
  for (const Compression compression :
       {Compression::kNone, Compression::kGzip, Compression::kZstd}) {
    const std::string file = directory.Write("archive", "");
    const vtq::FileDescriptor descriptor(open(file.c_str(), O_WRONLY | O_TRUNC));
    WriteParts(*MakeArchiveWriter(descriptor.Get(), compression));
    EXPECT_EQ(PartsOf(file), kParts);
  }
}

TEST(CaptureWriter, DirectoriesHoldWhatWasWritten) {
  const vtq::TemporaryDirectory directory;
  WriteParts(*MakeDirectoryWriter(
      vtq::FileDescriptor(open(directory.GetPath().c_str(), O_RDONLY | O_DIRECTORY))));
  EXPECT_EQ(PartsOf(directory.GetPath()), kParts);
}

TEST(CaptureWriter, AFullDiskIsReported) {
  const vtq::FileDescriptor full(open("/dev/full", O_WRONLY));
  const auto writer = MakeArchiveWriter(full.Get(), Compression::kNone);
  EXPECT_THROW(WriteParts(*writer), std::runtime_error);
}

TEST(CaptureWriter, AClosedPipeIsReported) {
  std::signal(SIGPIPE, SIG_IGN);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  const vtq::FileDescriptor writing(ends[1]);
  const auto writer = MakeArchiveWriter(writing.Get(), Compression::kNone);
  EXPECT_THROW(WriteParts(*writer), ClosedPipe);
}

}  // namespace
}  // namespace pciinfo
