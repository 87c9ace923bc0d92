// SPDX-License-Identifier: Apache-2.0
#include "host/process/process_tree.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <system_error>
#include <thread>
#include <vector>

#include "host/base/exit_status.h"

namespace pciinfo {
namespace {

// Linux: CONFIG_PROC_CHILDREN. The process has one thread, so its main thread's children are all.
constexpr const char* kChildren = "/proc/thread-self/children";

std::vector<pid_t> ChildrenBut(pid_t kept) {
  std::vector<pid_t> children;
  std::ifstream list(kChildren);
  for (pid_t child = 0; list >> child;) {
    if (child != kept) children.push_back(child);
  }
  return children;
}

/// False for a process that the kernel still holds, in a driver for example.
bool HasGone(pid_t child, int& status) noexcept {
  constexpr int kLooks = 2000;
  for (int look = 0; look < kLooks; ++look) {
    if (waitpid(child, &status, WNOHANG) != 0) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return false;
}

/// Kills the process group that a child leads. As long as the child has not been waited for, its
/// number can be no other group's.
void KillGroup(pid_t leader) noexcept { kill(-leader, SIGKILL); }

bool KillAndWait(pid_t child, int& status) noexcept {
  KillGroup(child);
  kill(child, SIGKILL);  // it may have left its own group
  return HasGone(child, status);
}

}  // namespace

bool HasChildren() noexcept {
  siginfo_t end{};
  return waitid(P_ALL, 0, &end, WEXITED | WNOHANG | WNOWAIT | __WALL) == 0;
}

pid_t StartProcess(const std::function<void()>& run) {
  std::fflush(nullptr);  // or both processes print what the buffers hold
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "cannot start a process");
  if (child > 0) return child;
  DieWithParent(parent);
  try {
    run();
  } catch (...) {
    _exit(kFailed);  // what the caller would do about it is for the other process only
  }
  _exit(kFailed);
}

void DieWithParent(pid_t parent) noexcept {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(kFailed);  // it ended before the call above
}

ProcessTree::ProcessTree() noexcept { prctl(PR_SET_CHILD_SUBREAPER, 1); }

pid_t ProcessTree::Start(const std::function<void()>& run) {
  return StartProcess([&run] {
    setpgid(0, 0);
    // That group is not the terminal's foreground group, and may be stopped when it prints.
    std::signal(SIGTTOU, SIG_IGN);
    run();
  });
}

std::optional<ProcessTree::Ended> ProcessTree::TakeEnded() noexcept {
  siginfo_t end{};
  if (waitid(P_ALL, 0, &end, WEXITED | WNOHANG | WNOWAIT) != 0 || end.si_pid == 0) return {};
  KillGroup(end.si_pid);
  int status = 0;
  waitpid(end.si_pid, &status, 0);
  return Ended{end.si_pid, status};
}

int ProcessTree::Kill(pid_t child) noexcept {
  int status = SIGKILL;
  KillAndWait(child, status);
  return status;
}

void ProcessTree::KillOrphans(pid_t kept) noexcept {
  if (!HasChildren()) return;  // nearly always; it saves looking into /proc
  try {
    // Every round brings up the children of the round before.
    for (auto children = ChildrenBut(kept); !children.empty(); children = ChildrenBut(kept)) {
      bool anyGone = false;
      int ignored = 0;
      for (const pid_t child : children) anyGone |= KillAndWait(child, ignored);
      if (!anyGone) return;
    }
  } catch (const std::exception&) {
    return;  // no memory for a list of them
  }
}

}  // namespace pciinfo
