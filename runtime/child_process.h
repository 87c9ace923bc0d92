#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

#include "runtime/file_descriptor.h"

namespace vtq {

/// A program that runs as the leader of its own process group, with an empty standard input, the
/// default signal dispositions, and an environment of PATH and LC_ALL only. Neither the group nor
/// the leader's process entry outlives this object in the process that started the program.
///
/// Only that process is told by the kernel how the program ends. One that is forked from it may use
/// its own copy of the object if the first one leaves the program alone and calls PassOnEnd; the
/// end of a copy ends nothing.
class ChildProcess final {
 public:
  /// Starts the program in `file` with `arguments` (the program's name first); its standard output
  /// and standard error go to these descriptors, which stay the caller's and are above 2. No other
  /// descriptor reaches the program. Throws std::system_error.
  ChildProcess(const std::string& file, std::vector<std::string> arguments, int output, int errors);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  bool IsStarter() const noexcept { return starter_ == ::getpid(); }
  pid_t GetLeader() const noexcept { return leader_; }

  /// Whether the leader has ended.
  bool HasEnded() const noexcept;

  /// A descriptor that is readable once PassOnEnd was called.
  int GetEnd() const noexcept { return end_.Get(); }

  /// Kills the leader and everything in its group. Allowed until WaitForEnd was called: before
  /// that the group's number cannot belong to anybody else.
  void KillGroup() const noexcept;

  /// Tells processes that were forked from this one that the leader has ended, and how. To be
  /// called once, when it has.
  void PassOnEnd() const noexcept;

  /// Waits until the leader has ended and returns its status as waitpid reports it. Called once.
  /// Throws std::system_error.
  int WaitForEnd();

 private:
  /// How the leader ended, if it has. False where this process cannot wait for it.
  bool LookForEnd(siginfo_t& end) const noexcept;
  int WaitForPassedOnEnd() const;

  pid_t starter_;
  FileDescriptor end_;  ///< an eventfd: 1 more than the status that was passed on
  pid_t leader_;
};

}  // namespace vtq
