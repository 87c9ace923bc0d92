// SPDX-License-Identifier: Apache-2.0
#include "runtime/command_replay.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "tests/runtime/temporary_directory.h"

namespace vtq {
namespace {

using NQZMVTQ20::TOSSpecific;

std::string OutputOf(const std::string& command) { return TOSSpecific::SpawnProcess(command, 20); }

class CommandReplayTest : public testing::Test {
 protected:
  void SetUp() override { ReplayCommandsFrom(directory_.GetPath()); }
  void TearDown() override { ReplayCommandsFrom(""); }

  TemporaryDirectory directory_;
};

TEST_F(CommandReplayTest, ARecordedCommandIsNotRun) {
  directory_.Write("basename /a", "not looked at: a name with a slash");
  directory_.Write("printf live", "recorded\n");
  EXPECT_EQ(OutputOf("printf live"), "recorded\n");
}

TEST_F(CommandReplayTest, ARecordingIsAnsweredByteForByte) {
  const std::string bytes("a\0b\xFF\n\n", 6);
  directory_.Write("printf live", bytes);
  EXPECT_EQ(OutputOf("printf live"), bytes);
  directory_.Write("printf live", "");
  EXPECT_EQ(OutputOf("printf live"), "");
}

TEST_F(CommandReplayTest, TheToolItselfNeedNotBeThere) {
  directory_.Write("no-such-tool -x", "recorded");
  EXPECT_EQ(OutputOf("no-such-tool -x"), "recorded");
}

TEST_F(CommandReplayTest, OnlyTheExactTextIsARecording) {
  directory_.Write("printf live", "recorded");
  EXPECT_EQ(OutputOf("printf  live"), "live");
  EXPECT_EQ(OutputOf("printf liv"), "liv");
}

TEST_F(CommandReplayTest, NoTextLeadsOutOfTheDirectory) {
  const std::string directory = directory_.GetPath() + "/recordings";
  std::filesystem::create_directory(directory);
  const std::string outside = directory_.Write("outside", "recorded");
  ReplayCommandsFrom(directory);
  EXPECT_THROW((void)OutputOf("../outside"), NQZMVTQ20::TVTQException);
  std::filesystem::create_directory(directory + "/basename");
  EXPECT_EQ(OutputOf("basename /../outside"), "outside\n");
  std::filesystem::create_symlink(outside, directory + "/printf live");
  EXPECT_EQ(OutputOf("printf live"), "live");
  EXPECT_THROW((void)OutputOf(".."), NQZMVTQ20::TVTQException);
  EXPECT_THROW((void)OutputOf(""), NQZMVTQ20::TVTQException);
}

TEST_F(CommandReplayTest, ADirectoryOrALongTextIsNoRecording) {
  std::filesystem::create_directory(directory_.GetPath() + "/printf live");
  EXPECT_EQ(OutputOf("printf live"), "live");
  const std::string longText(5000, 'x');
  EXPECT_EQ(OutputOf("printf " + longText), longText);
}

TEST_F(CommandReplayTest, AnEmptyDirectoryNameEndsIt) {
  directory_.Write("printf live", "recorded");
  ReplayCommandsFrom("");
  EXPECT_EQ(OutputOf("printf live"), "live");
}

}  // namespace
}  // namespace vtq
