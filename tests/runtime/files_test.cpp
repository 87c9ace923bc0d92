// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "tests/runtime/failure_of.h"
#include "tests/runtime/temporary_directory.h"

namespace NQZMVTQ20 {
namespace {

using vtq::Failure;
using vtq::FailureOf;

TEST(FilesTest, CapturesAFileByteForByte) {
  const vtq::TemporaryDirectory directory;
  const std::string content("a\0\r\n\xff", 5);
  EXPECT_EQ(TOSSpecific::CaptureFile(directory.Write("f", content)), content);
  EXPECT_EQ(TOSSpecific::CaptureFile(directory.Write("empty", "")), "");
}

TEST(FilesTest, CapturesAFileThatIsLargerThanOneRead) {
  const vtq::TemporaryDirectory directory;
  std::string content;
  for (int number = 0; number < 100000; ++number) content += std::to_string(number) + " ";
  EXPECT_EQ(TOSSpecific::CaptureFile(directory.Write("f", content)), content);
}

TEST(FilesTest, CapturesFilesOfTheKernelThatStateNoSize) {
  ASSERT_EQ(std::filesystem::file_size("/proc/self/status"), 0U);
  const std::string status = TOSSpecific::CaptureFile("/proc/self/status");
  EXPECT_NE(status.find("Pid:\t" + std::to_string(::getpid()) + "\n"), std::string::npos);
}

TEST(FilesTest, AMissingFileIsNamedWithTheReason) {
  const Failure failure = FailureOf([] { (void)TOSSpecific::CaptureFile("/no/such/file"); });
  EXPECT_EQ(failure.text, "the file /no/such/file cannot be read: No such file or directory");
  EXPECT_EQ(failure.code, TVTQStatusCode::kNotFound);
}

TEST(FilesTest, ADirectoryCannotBeCaptured) {
  const vtq::TemporaryDirectory directory;
  const Failure failure =
      FailureOf([&directory] { (void)TOSSpecific::CaptureFile(directory.GetPath()); });
  EXPECT_EQ(failure.code, TVTQStatusCode::kFailure);
  EXPECT_NE(failure.text.find("Is a directory"), std::string::npos);
}

TEST(FilesTest, SaysWhetherAFileExistsAndFollowsLinks) {
  const vtq::TemporaryDirectory directory;
  const std::string file = directory.Write("f", "");
  const std::string link = directory.GetPath() + "/link";
  std::filesystem::create_symlink(file, link);
  EXPECT_TRUE(TOSSpecific::FileExists(file));
  EXPECT_TRUE(TOSSpecific::FileExists(link));
  EXPECT_TRUE(TOSSpecific::FileExists(directory.GetPath()));
  std::filesystem::remove(file);
  EXPECT_FALSE(TOSSpecific::FileExists(file));
  EXPECT_FALSE(TOSSpecific::FileExists(link));
  EXPECT_FALSE(TOSSpecific::FileExists(""));
}

}  // namespace
}  // namespace NQZMVTQ20
