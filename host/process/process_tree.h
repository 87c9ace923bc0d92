// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>

namespace pciinfo {

/// Whether this process has children, also such as it did not start: a shell leaves some when it
/// becomes this program by `exec`. An orphan that comes to this process could be theirs.
bool HasChildren() noexcept;

/// Starts a process that dies when this one does, and calls `run` in it, which must not return.
/// Throws std::system_error.
pid_t StartProcess(const std::function<void()>& run);

/// Has the kernel kill this process when its parent, which must be `parent`, ends.
void DieWithParent(pid_t parent) noexcept;

/// The processes that this process starts, with all that they start in turn.
class ProcessTree final {
 public:
  /// A child that has ended.
  struct Ended {
    pid_t process;
    int status;  ///< as waitpid reports it
  };

  /// From here on descendants whose parents have ended become children of this process, where
  /// KillOrphans finds them. This process must have no children yet (see HasChildren).
  ProcessTree() noexcept;

  /// Starts a process like StartProcess, in a process group of its own.
  static pid_t Start(const std::function<void()>& run);

  /// A child that has ended since the last call; nothing when there is none. What is left of the
  /// process group that it led is killed.
  static std::optional<Ended> TakeEnded() noexcept;

  /// Kills a child and its process group and waits for its end. Answers its status as waitpid
  /// does; that of a killed process for one that the kernel does not let go within two seconds.
  static int Kill(pid_t child) noexcept;

  /// Kills whatever children are left but `kept` (0: none), with what they started. Does nothing
  /// where there is no /proc to find them in.
  static void KillOrphans(pid_t kept) noexcept;
};

}  // namespace pciinfo
