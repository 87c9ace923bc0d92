#include "runtime/command_ahead.h"

#include <gtest/gtest.h>
#include <poll.h>
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
    EndCommandAhead();
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
  EndCommandAhead();
  StartCommandAhead("true");
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

TEST_F(CommandAheadTest, TheOneThatIsUnderWayGoesOn) {
  const std::string script = Script("script", "echo out");
  StartCommandAhead(script);
  AwaitStart();
  StartCommandAhead(script);
  EXPECT_EQ(TOSSpecific::SpawnProcess(script, kLimit), "out\n");
  EXPECT_EQ(CountStarts(), 1);
}

// What a forked process makes of the command while this one passes on its end.
class ForkedCommandAheadTest : public CommandAheadTest {
 protected:
  // The output of the command or the text of the failure, in a forked process.
  std::string InFork(const std::string& command, int limit = kLimit) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      std::string text;
      const Failure failure = FailureOf([&] { text = TOSSpecific::SpawnProcess(command, limit); });
      text += failure.text;
      _exit(::write(ends[1], text.data(), text.size()) < 0 ? 1 : 0);
    }
    ::close(ends[1]);
    if (passesOn_) PassOnEnd();
    std::string text;
    char piece[4096];
    for (ssize_t size = 1; size > 0; text.append(piece, static_cast<std::size_t>(size))) {
      size = std::max<ssize_t>(::read(ends[0], piece, sizeof piece), 0);
    }
    ::close(ends[0]);
    EXPECT_EQ(::waitpid(child, nullptr, 0), child);
    return text;
  }

  bool passesOn_ = true;

 private:
  static void PassOnEnd() {
    pollfd life{GetCommandAheadLife(), POLLIN, 0};
    ASSERT_GE(life.fd, 0);
    ASSERT_EQ(::poll(&life, 1, kLimit * 1000), 1);
    PassOnCommandAheadEnd();
    EXPECT_EQ(GetCommandAheadLife(), -1) << "once is enough";
  }
};

TEST_F(ForkedCommandAheadTest, AForkedProcessTakesTheProgramOver) {
  const std::string script = Script("script", "seq 100000");
  StartCommandAhead(script);
  AwaitStart();
  EXPECT_EQ(InFork(script).size(), 588895U);
  EXPECT_EQ(CountStarts(), 1);
}

TEST_F(ForkedCommandAheadTest, ItLearnsHowTheProgramEnded) {
  const std::string failing = Script("failing", "echo sorry >&2; exit 3");
  StartCommandAhead(failing);
  EXPECT_EQ(InFork(failing),
            "the command \"" + failing + "\" exited with status 3 and printed nothing: sorry");
  const std::string dying = Script("dying", "echo out; kill -9 $$");
  StartCommandAhead(dying);
  EXPECT_EQ(InFork(dying), "the command \"" + dying + "\" died by signal 9");
}

TEST_F(ForkedCommandAheadTest, ItEndsAProgramThatTakesTooLong) {
  const std::string script = Script("endless", "sleep 1000");
  StartCommandAhead(script);
  EXPECT_EQ(InFork(script, 1), "the command \"" + script + "\" ran out of time after 1 seconds");
}

TEST_F(ForkedCommandAheadTest, WithoutTheEndTheOutputIsNotTaken) {
  const std::string script = Script("script", "echo out");
  StartCommandAhead(script);
  passesOn_ = false;
  EXPECT_EQ(InFork(script, 1),
            "the command \"" + script + "\" could not be followed to its end: No child processes");
}

TEST_F(ForkedCommandAheadTest, WhatWasEndedBeforeTheForkRunsAnew) {
  const std::string script = Script("script", "echo out");
  StartCommandAhead(script);
  AwaitStart();
  EndCommandAhead();
  passesOn_ = false;
  EXPECT_EQ(InFork(script), "out\n");
  EXPECT_EQ(CountStarts(), 2);
}

TEST_F(ForkedCommandAheadTest, TheEndOfAForkedProcessEndsNothing) {
  const std::string script = Script("script", "sleep 1; echo out");
  StartCommandAhead(script);
  const pid_t child = ::fork();
  if (child == 0) {
    const bool hasNothingToPassOn = GetCommandAheadLife() == -1;
    EndCommandAhead();
    _exit(hasNothingToPassOn ? 0 : 1);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(TOSSpecific::SpawnProcess(script, kLimit), "out\n");
  EXPECT_EQ(CountStarts(), 1);
}

TEST_F(ForkedCommandAheadTest, NothingIsPassedOnWithoutACommand) {
  EXPECT_EQ(GetCommandAheadLife(), -1);
}

}  // namespace
}  // namespace vtq
