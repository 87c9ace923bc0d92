#include "host/process/descendants.h"

#include <sys/prctl.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>
#include <vector>

namespace pciinfo {
namespace {

// Linux: CONFIG_PROC_CHILDREN. The process has one thread, so its main thread's children are all.
constexpr const char* kChildren = "/proc/thread-self/children";

/// Takes note of children that have ended. Far cheaper than a list that turns out empty.
bool HasOtherChildren() noexcept {
  pid_t ended = 0;
  do ended = waitpid(-1, nullptr, WNOHANG);
  while (ended > 0);
  return ended == 0;
}

std::vector<pid_t> Children() {
  std::vector<pid_t> children;
  std::ifstream list(kChildren);
  for (pid_t child = 0; list >> child;) children.push_back(child);
  return children;
}

/// False for a process that the kernel still holds, in a driver for example.
bool HasGone(pid_t child) noexcept {
  constexpr int kLooks = 2000;
  for (int look = 0; look < kLooks; ++look) {
    if (waitpid(child, nullptr, WNOHANG) != 0) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return false;
}

bool Kill(pid_t child) noexcept {
  kill(-child, SIGKILL);
  kill(child, SIGKILL);  // which may have left its own group
  return HasGone(child);
}

}  // namespace

void AdoptOrphans() noexcept { prctl(PR_SET_CHILD_SUBREAPER, 1); }

void KillTree(pid_t child) noexcept {
  Kill(child);
  KillChildren();
}

void KillChildren() noexcept {
  if (!HasOtherChildren()) return;
  try {
    // Every round brings up the children of the round before.
    for (auto children = Children(); !children.empty(); children = Children()) {
      bool anyGone = false;
      for (const pid_t child : children) anyGone |= Kill(child);
      if (!anyGone) return;
    }
  } catch (const std::exception&) {
    return;  // no memory for a list of them
  }
}

}  // namespace pciinfo
