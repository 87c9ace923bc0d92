// The watch in a child process of its own, which signals may end.

#include "host/capture/capture_watch.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>

#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

using std::chrono::steady_clock;

/// Runs `work` in a child; answers its status as waitpid does.
template <class Work>
int StatusOf(const Work& work) {
  const pid_t child = fork();
  if (child == 0) {
    HearSignals();
    work();
    _exit(0);
  }
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

void WaitForTheEnd() {
  while (true) pause();
}

class WorkWatchTest : public testing::TestWithParam<int> {
 protected:
  bool CleanedUp() const { return std::filesystem::exists(directory_.GetPath() + "/mark"); }

  vtq::TemporaryDirectory directory_;
};

TEST_P(WorkWatchTest, ASignalCleansUpAndEndsTheProgram) {
  const int status = StatusOf([this] {
    WorkWatch watch([this] { directory_.Write("mark", ""); });
    kill(getpid(), GetParam());
    WaitForTheEnd();
  });
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), GetParam());
  EXPECT_TRUE(CleanedUp());
}

TEST_P(WorkWatchTest, AnIgnoredSignalStaysIgnored) {
  const int status = StatusOf([this] {
    std::signal(GetParam(), SIG_IGN);
    const WorkWatch watch([this] { directory_.Write("mark", ""); });
    kill(getpid(), GetParam());
    usleep(50'000);
  });
  EXPECT_EQ(status, 0);
  EXPECT_FALSE(CleanedUp());
}

INSTANTIATE_TEST_SUITE_P(Signals, WorkWatchTest, testing::Values(SIGHUP, SIGINT, SIGTERM));

TEST_F(WorkWatchTest, ASignalWaitsForWhatHoldsIt) {
  const int status = StatusOf([this] {
    WorkWatch watch([this] { directory_.Write("mark", ""); });
    {
      const auto lock = watch.Hold();
      kill(getpid(), SIGTERM);
      usleep(100'000);
      if (CleanedUp()) _exit(1);
    }
    WaitForTheEnd();
  });
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_TRUE(CleanedUp());
}

TEST_F(WorkWatchTest, ASignalDoesNotWaitForEver) {
  const int status = StatusOf([this] {
    WorkWatch watch([this] { directory_.Write("mark", ""); });
    const auto lock = watch.Hold();
    kill(getpid(), SIGTERM);
    WaitForTheEnd();
  });
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_TRUE(CleanedUp());
}

TEST_F(WorkWatchTest, WithoutASignalItEndsAtOnceAndLeavesTheMaskAsItWas) {
  const auto start = steady_clock::now();
  sigset_t before;
  sigset_t after;
  pthread_sigmask(SIG_SETMASK, nullptr, &before);
  {
    WorkWatch watch([this] { directory_.Write("mark", ""); });
  }
  pthread_sigmask(SIG_SETMASK, nullptr, &after);
  EXPECT_EQ(sigismember(&before, SIGTERM), sigismember(&after, SIGTERM));
  EXPECT_LT(steady_clock::now() - start, std::chrono::milliseconds(900));
  EXPECT_FALSE(CleanedUp());
}

/// What a child writes to a standard error that is a terminal.
template <class Work>
std::string OnTerminal(const Work& work) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  grantpt(terminal);
  unlockpt(terminal);
  const vtq::FileDescriptor reading(terminal);
  const vtq::FileDescriptor writing(open(ptsname(terminal), O_RDWR | O_NOCTTY));
  EXPECT_EQ(StatusOf([&] {
              dup2(writing.Get(), STDERR_FILENO);
              work();
            }),
            0);
  // A terminal passes on what is written to it in its own time, so its end is marked.
  constexpr char kEnd = '#';
  EXPECT_EQ(write(writing.Get(), &kEnd, 1), 1);
  std::string text;
  for (char c = 0; read(terminal, &c, 1) == 1 && c != kEnd;) text += c;
  return text;
}

TEST(WorkWatchProgress, ATerminalShowsItAfterASecondAndLosesItAtTheEnd) {
  EXPECT_EQ(OnTerminal([] {
              WorkWatch watch([] {});
              watch.Tell("some\nthing");
              usleep(1'500'000);
            }),
            "pciinfo: reading some?thing\r\x1B[K");
}

TEST(WorkWatchProgress, ATerminalShowsNothingOfQuickWork) {
  EXPECT_EQ(OnTerminal([] {
              WorkWatch watch([] {});
              watch.Tell("something");
            }),
            "");
}

TEST(WorkWatchProgress, AFileGetsNone) {
  const RunResult result = RunShell("\"$PCIINFO\" capture - >/dev/null");
  EXPECT_EQ(result.err.find("reading"), std::string::npos);
}

}  // namespace
}  // namespace pciinfo
