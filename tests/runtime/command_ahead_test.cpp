#include "runtime/command_ahead.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <thread>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "runtime/command_replay.h"
#include "tests/runtime/failure_of.h"
#include "tests/runtime/temporary_directory.h"

namespace vtq {
namespace {

using NQZMVTQ20::TOSSpecific;

constexpr int kLimit = 20;

// Scripts note in a file that they were started.
class CommandAheadTest : public testing::Test {
 protected:
  void TearDown() override {
    StartCommandAhead("");
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a program was left";
  }

  std::string Script(const std::string& name, const std::string& body) const {
    return directory_.WriteScript(name, "echo $$ >>" + Notes() + "\n" + body);
  }

  std::string Notes() const { return directory_.GetPath() + "/notes"; }

  int CountStarts() const {
    std::ifstream notes(Notes());
    const std::string text{std::istreambuf_iterator<char>(notes), {}};
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
  }

  void AwaitStart() const {
    while (CountStarts() == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }

  TemporaryDirectory directory_;
};

TEST_F(CommandAheadTest, TheNextCallTakesTheStartedProgramOver) {
  const std::string script = Script("script", "echo out");
  StartCommandAhead(script);
  AwaitStart();
  EXPECT_EQ(TOSSpecific::SpawnProcess(script, kLimit), "out\n");
  EXPECT_EQ(CountStarts(), 1);
}

TEST_F(CommandAheadTest, TheCallAfterThatRunsTheCommandItself) {
  const std::string script = Script("script", "echo out");
  StartCommandAhead(script);
  TOSSpecific::SpawnProcess(script, kLimit);
  EXPECT_EQ(TOSSpecific::SpawnProcess(script, kLimit), "out\n");
  EXPECT_EQ(CountStarts(), 2);
}

TEST_F(CommandAheadTest, AnotherTextRunsItsOwnProgram) {
  const std::string script = Script("script", "echo \"out $*\"");
  StartCommandAhead(script);
  AwaitStart();
  EXPECT_EQ(TOSSpecific::SpawnProcess(script + " -x", kLimit), "out -x\n");
  EXPECT_EQ(TOSSpecific::SpawnProcess(script, kLimit), "out \n");
  EXPECT_EQ(CountStarts(), 2);
}

TEST_F(CommandAheadTest, MoreOutputThanAPipeHoldsWaitsForTheCall) {
  const std::string script = Script("script", "seq 100000");
  StartCommandAhead(script);
  AwaitStart();
  EXPECT_EQ(TOSSpecific::SpawnProcess(script, kLimit).size(), 588895U);
  EXPECT_EQ(CountStarts(), 1);
}

TEST_F(CommandAheadTest, TheTimeCountsFromTheCall) {
  const std::string script = Script("script", "sleep 3; echo out");
  StartCommandAhead(script);
  AwaitStart();
  std::this_thread::sleep_for(std::chrono::seconds(2));
  EXPECT_EQ(TOSSpecific::SpawnProcess(script, 2), "out\n");
}

TEST_F(CommandAheadTest, AFailureIsToldByTheCall) {
  const std::string script = Script("script", "echo sorry >&2; exit 3");
  StartCommandAhead(script);
  EXPECT_EQ(FailureOf([&] { TOSSpecific::SpawnProcess(script, kLimit); }).text,
            "the command \"" + script + "\" exited with status 3 and printed nothing: sorry");
  EXPECT_EQ(CountStarts(), 1);
}

TEST_F(CommandAheadTest, WhatCannotBeStartedIsLeftToTheCall) {
  for (const char* const command : {"no-such-program -x", ""}) {
    const Failure plain = FailureOf([&] { TOSSpecific::SpawnProcess(command, kLimit); });
    StartCommandAhead(command);
    EXPECT_EQ(FailureOf([&] { TOSSpecific::SpawnProcess(command, kLimit); }).text, plain.text);
  }
}

TEST_F(CommandAheadTest, ARecordedCommandIsNotStarted) {
  const TemporaryDirectory recordings;
  recordings.Write("basename /a", "recorded\n");
  ReplayCommandsFrom(recordings.GetPath());
  StartCommandAhead("true");
  recordings.Write("true", "recorded\n");
  EXPECT_EQ(TOSSpecific::SpawnProcess("true", kLimit), "recorded\n");
  StartCommandAhead("true");  // and ends the one before
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  ReplayCommandsFrom("");
}

TEST_F(CommandAheadTest, TheOneBeforeIsEnded) {
  StartCommandAhead(Script("endless", "sleep 1000"));
  AwaitStart();
  const std::string script = Script("script", "echo out");
  StartCommandAhead(script);
  EXPECT_EQ(TOSSpecific::SpawnProcess(script, kLimit), "out\n");
}

TEST_F(CommandAheadTest, AForkedProcessRunsTheCommandItself) {
  const std::string script = Script("script", "echo out");
  StartCommandAhead(script);
  AwaitStart();
  const pid_t child = ::fork();
  if (child == 0) _exit(TOSSpecific::SpawnProcess(script, kLimit) == "out\n" ? 0 : 1);
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(CountStarts(), 2);
}

}  // namespace
}  // namespace vtq
