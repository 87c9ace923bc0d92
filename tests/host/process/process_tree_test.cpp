// SPDX-License-Identifier: Apache-2.0

// Each test in a child process of its own, which has no children and may adopt orphans.

#include "host/process/process_tree.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "runtime/file_descriptor.h"
#include "tests/fakes/run_process.h"

namespace pciinfo {
namespace {

bool ExitsWellInChild(const std::function<bool()>& holds) {
  return RunInChild([&] { return holds() ? 0 : 1; }).status == 0;
}

/// Carries the number of a process from the process that knows it.
class Note {
 public:
  Note() {
    int ends[2];
    if (pipe(ends) != 0) _exit(2);
    reading_ = vtq::FileDescriptor(ends[0]);
    writing_ = vtq::FileDescriptor(ends[1]);
  }
  void Write(pid_t process) const {
    if (write(writing_.Get(), &process, sizeof process) != sizeof process) _exit(2);
  }
  pid_t Read() const {
    pid_t process = 0;
    return read(reading_.Get(), &process, sizeof process) == sizeof process ? process : 0;
  }

 private:
  vtq::FileDescriptor reading_;
  vtq::FileDescriptor writing_;
};

[[noreturn]] void SleepForEver() {
  while (true) pause();
}

/// Leaves a process behind that has its own session.
void LeaveProcess(const Note& note) {
  const pid_t child = fork();
  if (child != 0) return;
  setsid();
  note.Write(getpid());
  SleepForEver();
}

/// Whether the process is gone, or only waits for its new parent to take note of its end.
bool HasGone(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string status;
  return !std::getline(file, status) || status.substr(status.rfind(')'), 3) == ") Z";
}

bool BecomesGone(pid_t process) {
  for (int look = 0; look < 2000 && !HasGone(process); ++look) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return HasGone(process);
}

ProcessTree::Ended AwaitEnd() {
  while (true) {
    if (const auto ended = ProcessTree::TakeEnded()) return *ended;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

TEST(ProcessTree, AProcessLeadsItsOwnGroupAndItsStatusIsKnown) {
  EXPECT_TRUE(ExitsWellInChild([] {
    const pid_t child = ProcessTree::Start([] { _exit(getpgrp() == getpid() ? 42 : 1); });
    const ProcessTree::Ended ended = AwaitEnd();
    return ended.process == child && WIFEXITED(ended.status) && WEXITSTATUS(ended.status) == 42;
  }));
}

TEST(ProcessTree, AProcessThatThrowsOrReturnsDoesNotGoOnAsItsParent) {
  EXPECT_TRUE(ExitsWellInChild([] {
    ProcessTree::Start([] { throw 1; });
    ProcessTree::Start([] {});
    return WEXITSTATUS(AwaitEnd().status) == 1 && WEXITSTATUS(AwaitEnd().status) == 1;
  }));
}

TEST(ProcessTree, NoEndIsTakenWhereThereIsNone) {
  EXPECT_TRUE(ExitsWellInChild([] {
    if (ProcessTree::TakeEnded()) return false;
    const pid_t child = ProcessTree::Start(SleepForEver);
    const bool isNone = !ProcessTree::TakeEnded();
    ProcessTree::Kill(child);
    return isNone && !ProcessTree::TakeEnded();
  }));
}

TEST(ProcessTree, ChildrenAreSeenUntilTheyHaveBeenWaitedFor) {
  EXPECT_TRUE(ExitsWellInChild([] {
    if (HasChildren()) return false;
    const pid_t child = fork();
    if (child == 0) _exit(0);
    const bool isSeen = HasChildren();
    waitpid(child, nullptr, 0);
    return isSeen && !HasChildren();
  }));
}

TEST(ProcessTree, KillEndsTheWholeGroup) {
  EXPECT_TRUE(ExitsWellInChild([] {
    const Note note;
    const pid_t child = ProcessTree::Start([&] {
      if (fork() == 0) note.Write(getpid());
      SleepForEver();
    });
    const pid_t grandchild = note.Read();
    const int status = ProcessTree::Kill(child);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL && BecomesGone(grandchild);
  }));
}

TEST(ProcessTree, TheGroupOfAProcessThatEndsIsKilled) {
  EXPECT_TRUE(ExitsWellInChild([] {
    const Note note;
    ProcessTree::Start([&] {
      if (fork() != 0) _exit(0);
      note.Write(getpid());
      SleepForEver();
    });
    const pid_t grandchild = note.Read();
    AwaitEnd();
    return BecomesGone(grandchild);
  }));
}

TEST(ProcessTree, OrphansAreKilledAndTheProcessThatIsKeptIsNot) {
  EXPECT_TRUE(ExitsWellInChild([] {
    const ProcessTree processes;
    const Note note;
    const pid_t kept = ProcessTree::Start(SleepForEver);
    ProcessTree::Start([&] {
      LeaveProcess(note);
      _exit(0);
    });
    const pid_t orphan = note.Read();
    AwaitEnd();
    if (HasGone(orphan)) return false;  // it has left the group
    ProcessTree::KillOrphans(kept);
    const bool isKept = waitpid(kept, nullptr, WNOHANG) == 0;
    ProcessTree::KillOrphans(0);
    return HasGone(orphan) && isKept && !HasChildren();
  }));
}

TEST(ProcessTree, AProcessDiesWithItsParent) {
  const Note note;
  const pid_t parent = fork();
  if (parent == 0) {
    StartProcess([&] {
      note.Write(getpid());
      SleepForEver();
    });
    SleepForEver();
  }
  const pid_t child = note.Read();
  EXPECT_FALSE(HasGone(child));
  kill(parent, SIGKILL);
  waitpid(parent, nullptr, 0);
  EXPECT_TRUE(BecomesGone(child));
}

TEST(ProcessTree, AProcessWhoseParentHasGoneEndsAtOnce) {
  EXPECT_EQ(RunInChild([] {
              DieWithParent(getppid() + 1);
              return 0;
            }).status,
            1);
}

}  // namespace
}  // namespace pciinfo
