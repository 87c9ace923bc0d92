// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>
#include <thread>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "tests/runtime/failure_of.h"
#include "tests/runtime/temporary_directory.h"

namespace NQZMVTQ20 {
namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;
using vtq::Failure;
using vtq::FailureOf;

constexpr int kLimit = 20;

std::size_t CountDescriptors() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
}

// Whether the process is gone, or only waits for its new parent to take note of its end.
bool IsGone(const std::string& processId) {
  const std::string file = "/proc/" + processId + "/stat";
  if (!TOSSpecific::FileExists(file)) return true;
  const std::string status = TOSSpecific::CaptureFile(file);
  return status.substr(status.rfind(')'), 3) == ") Z";
}

bool BecomesGone(const std::string& processId) {
  const auto deadline = steady_clock::now() + seconds(10);
  while (steady_clock::now() < deadline) {
    if (IsGone(processId)) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

// Every test also asks that nothing is left behind: no descriptor, no child.
class SpawnTest : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(CountDescriptors(), descriptors_);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_LT(steady_clock::now() - start_, seconds(kLimit - 2)) << "something was waited for";
  }

  std::string Run(const std::string& body, int limit = kLimit) {
    return TOSSpecific::SpawnProcess(directory_.WriteScript("script", body), limit);
  }

  Failure FailureOfScript(const std::string& body, int limit = kLimit) {
    return FailureOf([&] { (void)Run(body, limit); });
  }

  std::string Reason(const Failure& failure) const {
    const std::string start = "the command \"" + directory_.GetPath() + "/script\" ";
    EXPECT_EQ(failure.text.substr(0, start.size()), start);
    return failure.text.substr(std::min(start.size(), failure.text.size()));
  }

  vtq::TemporaryDirectory directory_;
  std::size_t descriptors_ = CountDescriptors();
  steady_clock::time_point start_ = steady_clock::now();
};

TEST_F(SpawnTest, ReturnsTheStandardOutputOnly) {
  EXPECT_EQ(Run("echo out; echo err >&2; printf last"), "out\nlast");
}

TEST_F(SpawnTest, SplitsTheCommandAtBlanks) {
  const std::string script = directory_.WriteScript("script", "for a; do echo \"[$a]\"; done");
  EXPECT_EQ(TOSSpecific::SpawnProcess("  " + script + " a  b\tc ", kLimit), "[a]\n[b]\n[c]\n");
}

TEST_F(SpawnTest, InterpretsNoCharacterOfTheShell) {
  const std::string text = "$HOME > /tmp/x ; `id` | * ~ 'a b' \"c\" && \\ $(id)";
  EXPECT_EQ(TOSSpecific::SpawnProcess("echo " + text, kLimit), text + "\n");
}

TEST_F(SpawnTest, FindsAProgramByItsName) {
  EXPECT_EQ(TOSSpecific::SpawnProcess("basename /a/b", kLimit), "b\n");
}

TEST_F(SpawnTest, LooksInItsOwnSearchPathOnly) {
  directory_.WriteScript("only-here", "echo found");
  const char* path = ::getenv("PATH");
  const std::string oldPath = path != nullptr ? path : "";
  ::setenv("PATH", directory_.GetPath().c_str(), 1);
  const Failure failure = FailureOf([] { (void)TOSSpecific::SpawnProcess("only-here -x", 5); });
  EXPECT_EQ(TOSSpecific::SpawnProcess("basename b", kLimit), "b\n");
  ::setenv("PATH", oldPath.c_str(), 1);
  EXPECT_EQ(failure.text,
            "the command \"only-here -x\" cannot be started: not found in "
            "/usr/sbin:/usr/bin:/sbin:/bin");
  EXPECT_EQ(failure.code, TVTQStatusCode::kNotFound);
}

TEST_F(SpawnTest, ARelativePathIsNoProgramName) {
  directory_.WriteScript("script", "echo found");
  const std::filesystem::path old = std::filesystem::current_path();
  std::filesystem::current_path(directory_.GetPath());
  EXPECT_THROW((void)TOSSpecific::SpawnProcess("./script", kLimit), TVTQException);
  EXPECT_THROW((void)TOSSpecific::SpawnProcess("../bin/true", kLimit), TVTQException);
  std::filesystem::current_path(old);
}

TEST_F(SpawnTest, NoProgramHasAZeroByteInItsName) {
  const Failure failure =
      FailureOf([] { TOSSpecific::SpawnProcess(std::string("true\0x", 6), kLimit); });
  EXPECT_EQ(failure.code, TVTQStatusCode::kNotFound);
}

TEST_F(SpawnTest, WhatCannotBeStartedIsSaidToBe) {
  EXPECT_EQ(Reason(FailureOf([this] {
              (void)TOSSpecific::SpawnProcess(directory_.GetPath() + "/script", kLimit);
            })),
            "cannot be started: No such file or directory");
  const std::string file = directory_.Write("script", "no program");
  const Failure notExecutable =
      FailureOf([&file] { (void)TOSSpecific::SpawnProcess(file, kLimit); });
  EXPECT_EQ(Reason(notExecutable), "cannot be started: Permission denied");
  EXPECT_EQ(notExecutable.code, TVTQStatusCode::kAccessDenied);
  std::filesystem::permissions(file, std::filesystem::perms{0755});
  EXPECT_EQ(Reason(FailureOf([&file] { (void)TOSSpecific::SpawnProcess(file, kLimit); })),
            "cannot be started: Exec format error");
}

TEST_F(SpawnTest, ACommandOfBlanksNamesNoProgram) {
  EXPECT_EQ(FailureOf([] { (void)TOSSpecific::SpawnProcess(" \t", kLimit); }).text,
            "the command \" \t\" cannot be started: it names no program");
}

TEST_F(SpawnTest, TheEnvironmentIsThePathAndTheLanguage) {
  ::setenv("RUNTIME_TEST_MARK", "1", 1);
  std::istringstream lines(TOSSpecific::SpawnProcess("env", kLimit));
  ::unsetenv("RUNTIME_TEST_MARK");
  std::set<std::string> variables;
  for (std::string line; std::getline(lines, line);) variables.insert(line);
  EXPECT_EQ(variables, (std::set<std::string>{"LC_ALL=C", "PATH=/usr/sbin:/usr/bin:/sbin:/bin"}));
}

TEST_F(SpawnTest, TheStandardInputIsEmpty) {
  EXPECT_EQ(TOSSpecific::SpawnProcess("cat", kLimit), "");
}

TEST_F(SpawnTest, OnlyTheThreeStandardDescriptorsReachTheProgram) {
  const int inherited = ::fcntl(STDERR_FILENO, F_DUPFD, 50);
  ASSERT_GE(inherited, 50);
  const std::string listing = TOSSpecific::SpawnProcess("ls /proc/self/fd", kLimit);
  ::close(inherited);
  EXPECT_EQ(listing, "0\n1\n2\n3\n") << "3 is what ls itself reads";
}

TEST_F(SpawnTest, SignalsThatTheHostIgnoresOrBlocksStandAtTheirDefaults) {
  sigset_t blocked;
  sigset_t old;
  ::sigemptyset(&blocked);
  ::sigaddset(&blocked, SIGUSR1);
  ::sigprocmask(SIG_BLOCK, &blocked, &old);
  const auto oldHandler = ::signal(SIGPIPE, SIG_IGN);
  std::istringstream masks(
      TOSSpecific::SpawnProcess("grep -Eh Sig(Blk|Ign) /proc/self/status", kLimit));
  ::signal(SIGPIPE, oldHandler);
  ::sigprocmask(SIG_SETMASK, &old, nullptr);
  std::string label;
  std::uint64_t isBlocked = 1;
  std::uint64_t isIgnored = ~std::uint64_t{0};
  masks >> label >> std::hex >> isBlocked >> label >> isIgnored;
  EXPECT_EQ(isBlocked, 0U);
  // The 31 signals with a name: the C library keeps 32 and 33 to itself, as they came.
  EXPECT_EQ(isIgnored & 0x7FFFFFFFU, 0U);
}

TEST_F(SpawnTest, TheProgramLeadsItsOwnProcessGroup) {
  std::istringstream fields(Run("exec cut -d' ' -f1,5 /proc/self/stat"));
  std::string processId;
  std::string group;
  fields >> processId >> group;
  EXPECT_EQ(group, processId);
  EXPECT_NE(group, std::to_string(::getpgrp()));
}

TEST_F(SpawnTest, TheProgramEndsWhenItsHostIsKilled) {
  const std::string note = directory_.GetPath() + "/pid";
  const pid_t host = ::fork();
  if (host == 0) {
    try {
      (void)Run("echo $$ > " + note + ".new; mv " + note + ".new " + note + "; exec sleep 300");
    } catch (const TVTQException&) {
      ::_exit(1);
    }
    ::_exit(0);
  }
  while (!TOSSpecific::FileExists(note)) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  ::kill(host, SIGKILL);
  ::waitpid(host, nullptr, 0);
  std::istringstream words(TOSSpecific::CaptureFile(note));
  std::string processId;
  words >> processId;
  EXPECT_TRUE(BecomesGone(processId));
}

TEST_F(SpawnTest, BothStreamsMayBeFlooded) {
  const std::string output =
      Run("head -c 3000000 /dev/zero >&2\n"
          "head -c 3000000 /dev/zero\n"
          "head -c 3000000 /dev/zero >&2 & head -c 3000000 /dev/zero; wait");
  EXPECT_EQ(output.size(), 6000000U);
}

TEST_F(SpawnTest, TakesLargeOutput) {
  constexpr std::size_t kSize = 60000000;
  const std::string output =
      TOSSpecific::SpawnProcess("head -c " + std::to_string(kSize) + " /dev/zero", kLimit);
  EXPECT_EQ(output.size(), kSize);
  EXPECT_EQ(static_cast<std::size_t>(std::count(output.begin(), output.end(), '\0')), kSize);
}

TEST_F(SpawnTest, OutputOfAFailingProgramIsReturned) {
  EXPECT_EQ(Run("echo half; echo trouble >&2; exit 3"), "half\n");
}

TEST_F(SpawnTest, AFailingProgramWithoutOutputThrowsWithItsFirstComplaint) {
  EXPECT_EQ(Reason(FailureOfScript("exit 3")), "exited with status 3 and printed nothing");
  EXPECT_EQ(Reason(FailureOfScript("echo 'no such bus' >&2; echo more >&2; exit 1")),
            "exited with status 1 and printed nothing: no such bus");
}

TEST_F(SpawnTest, KeepsLittleOfAnEndlessComplaint) {
  const Failure failure = FailureOfScript("head -c 1000000 /dev/zero | tr '\\0' x >&2; exit 1");
  EXPECT_GT(failure.text.size(), 4096U);
  EXPECT_LT(failure.text.size(), 4096U + 500U);
}

TEST_F(SpawnTest, SuccessWithoutOutputIsAnEmptyText) { EXPECT_EQ(Run("exit 0"), ""); }

TEST_F(SpawnTest, DeathByASignalThrowsEvenWithOutput) {
  EXPECT_EQ(Reason(FailureOfScript("echo half; kill -SEGV $$")), "died by signal 11");
  EXPECT_EQ(Reason(FailureOfScript("kill -KILL $$")), "died by signal 9");
}

TEST_F(SpawnTest, AProgramThatNeverEndsIsKilledWithItsGroup) {
  const std::string note = directory_.GetPath() + "/pid";
  EXPECT_EQ(Reason(FailureOfScript("sleep 300 & echo $! > " + note + "; echo half; wait", 1)),
            "ran out of time after 1 seconds");
  std::istringstream words(TOSSpecific::CaptureFile(note));
  std::string processId;
  words >> processId;
  EXPECT_TRUE(BecomesGone(processId));
}

TEST_F(SpawnTest, AProgramThatIgnoresBeingAskedToEndIsKilled) {
  EXPECT_EQ(Reason(FailureOfScript("trap '' TERM HUP INT; while :; do sleep 1; done", 1)),
            "ran out of time after 1 seconds");
}

TEST_F(SpawnTest, AProgramThatClosedItsStreamsStillHasItsTimeLimit) {
  EXPECT_EQ(Reason(FailureOfScript("exec >&- 2>&-; sleep 300", 1)),
            "ran out of time after 1 seconds");
}

TEST_F(SpawnTest, AProgramThatClosedItsStreamsMayStillSucceed) {
  EXPECT_EQ(Run("echo out; exec >&- 2>&-; sleep 0.3; exit 0"), "out\n");
}

TEST_F(SpawnTest, AProgramThatFloodsForEverRunsOutOfTime) {
  EXPECT_EQ(Reason(FailureOfScript("exec yes >&2", 1)), "ran out of time after 1 seconds");
}

TEST_F(SpawnTest, NoTimeIsNoTime) {
  EXPECT_EQ(Reason(FailureOfScript("sleep 300", 0)), "ran out of time after 0 seconds");
  EXPECT_EQ(Reason(FailureOfScript("sleep 300", -5)), "ran out of time after 0 seconds");
}

TEST_F(SpawnTest, AChildThatKeepsThePipeIsNotWaitedForAndKilled) {
  std::string processId = Run("sleep 300 & echo $!");
  processId.pop_back();
  EXPECT_TRUE(BecomesGone(processId));
}

// The one that floods dies by SIGPIPE as soon as nobody reads its output any more.
TEST_F(SpawnTest, AChildThatLeftTheGroupIsNotWaitedFor) {
  const std::string output = Run("setsid yes & sleep 0.2");
  EXPECT_FALSE(output.empty());
  EXPECT_EQ(output.find_first_not_of("y\n"), std::string::npos);
}

TEST_F(SpawnTest, SignalsToTheHostDoNotDisturbIt) {
  struct sigaction action {};
  struct sigaction old {};
  action.sa_handler = [](int) {};
  ::sigaction(SIGALRM, &action, &old);
  const itimerval often = {{0, 2000}, {0, 2000}};
  const itimerval never = {};
  ::setitimer(ITIMER_REAL, &often, nullptr);
  const std::string output = Run("for i in 1 2 3 4 5; do echo $i; sleep 0.05; done");
  ::setitimer(ITIMER_REAL, &never, nullptr);
  ::sigaction(SIGALRM, &old, nullptr);
  EXPECT_EQ(output, "1\n2\n3\n4\n5\n");
}

TEST_F(SpawnTest, WorksWhereTheHostHasClosedItsOwnStreams) {
  EXPECT_EXIT(
      {
        ::close(STDIN_FILENO);
        ::close(STDOUT_FILENO);
        ::close(STDERR_FILENO);
        const std::string output = Run("cat; echo out; echo err >&2");
        ::_exit(output == "out\n" ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace NQZMVTQ20
