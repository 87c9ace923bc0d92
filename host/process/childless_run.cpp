// SPDX-License-Identifier: Apache-2.0
#include "host/process/childless_run.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "host/process/guarded_run.h"
#include "host/process/process_tree.h"

namespace pciinfo {
namespace {

[[noreturn]] void RunAndExit(const std::function<ExitStatus()>& run) {
  try {
    _exit(RunGuarded(run));
  } catch (const EndedBySignal& end) {
    EndBySignal(end.signal);
    throw;
  }
}

void AwaitSignal(const HeldSignals& signals) {
  pollfd watched{signals.GetDescriptor(), POLLIN, 0};
  if (poll(&watched, 1, -1) >= 0 || errno == EINTR) return;
  throw std::system_error(errno, std::generic_category(), "cannot wait for a process");
}

/// The child's status, as waitpid reports it.
int Await(pid_t child, const HeldSignals& signals) {
  int status = 0;
  while (waitpid(child, &status, WNOHANG) != child) {
    AwaitSignal(signals);
    for (int signal = signals.Take(); signal != 0; signal = signals.Take()) {
      if (signal != SIGCHLD) kill(child, signal);
    }
  }
  return status;
}

}  // namespace

ExitStatus RunChildless(const HeldSignals& signals, const std::function<ExitStatus()>& run) {
  if (!HasChildren()) return run();
  // It stays in this process group, so that the terminal stops and continues both.
  const int status = Await(StartProcess([&run] { RunAndExit(run); }), signals);
  if (WIFSIGNALED(status)) throw EndedBySignal{WTERMSIG(status)};
  return static_cast<ExitStatus>(WEXITSTATUS(status));
}

}  // namespace pciinfo
