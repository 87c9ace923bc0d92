// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <functional>

namespace pciinfo {

/// The processes that this process starts, with all that they start in turn.
class ProcessTree final {
 public:
  /// From here on descendants whose parents have ended become children of this process, where
  /// KillOrphans finds them. Not so when it has children already, as a shell's `exec` may leave
  /// some: an orphan could be theirs then, and is nothing to kill.
  ProcessTree() noexcept;

  /// Starts a process of an own process group, which dies when this one does, and calls `run` in
  /// it, which must not return. Throws std::system_error.
  static pid_t Start(const std::function<void()>& run);

  /// Kills a child and its process group and waits for its end. Answers its status as waitpid
  /// does; that of a killed process for one that the kernel does not let go within two seconds.
  static int Kill(pid_t child) noexcept;

  /// Kills whatever children are left but `kept` (0: none), with what they started.
  void KillOrphans(pid_t kept) const noexcept;

 private:
  bool adoptsOrphans_;
};

/// Has the kernel kill this process when its parent, which must be `parent`, ends.
void DieWithParent(pid_t parent) noexcept;

}  // namespace pciinfo
