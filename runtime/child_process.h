// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "runtime/file_descriptor.h"

namespace vtq {

/// A program that runs as the leader of its own process group, with an empty standard input, the
/// default signal dispositions, and an environment of PATH and LC_ALL only. Neither the group nor
/// the leader's process entry outlives this object. The kernel kills the leader when the thread
/// that made this object ends.
class ChildProcess final {
 public:
  /// Starts the program in `file` with `arguments` (the program's name first); its standard output
  /// and standard error go to these descriptors, which stay the caller's and are above 2. No other
  /// descriptor reaches the program. Throws std::system_error.
  ChildProcess(const std::string& file, std::vector<std::string> arguments, int output, int errors);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  /// Whether the leader has ended.
  bool HasEnded() const noexcept;

  /// A descriptor that poll finds readable when the leader has ended; -1 with Linux before 5.3.
  int GetEndDescriptor() const noexcept { return end_.Get(); }

  /// Kills the leader and everything in its group. Allowed until WaitForEnd was called: before
  /// that the group's number cannot belong to anybody else.
  void KillGroup() const noexcept;

  /// Waits until the leader has ended and returns its status as waitpid reports it. Called once.
  /// Throws std::system_error.
  int WaitForEnd();

 private:
  pid_t leader_;
  FileDescriptor end_;
};

}  // namespace vtq
