// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>
#include <termios.h>

#include <optional>
#include <string>

#include "runtime/file_descriptor.h"

namespace pciinfo {

/// Shows the output of workers through a pager. It is started by the first output, so that nothing
/// is in the way of what is done before. Where it cannot be started, the output is passed on as it
/// is, after a message unless it is the default pager.
class Pager final {
 public:
  /// `command` is a command of the shell. A restricted pager is the default pager whatever the
  /// command, in its secure mode, where it starts no programs and writes no files: it is for users
  /// who have fewer rights than this process. Throws std::system_error.
  Pager(std::string command, bool isRestricted);

  /// In a worker: the standard output goes to the pager from here on.
  void ReceiveOutput() noexcept;
  /// For messages that the user is to see when the pager has ended; none where standard error is no
  /// terminal.
  const vtq::FileDescriptor& GetLateMessages() const noexcept { return lateMessages_; }

  /// A descriptor to poll: when it is readable, or closed at its other end, HandleOutput is to be
  /// called. -1 when there is nothing to do at present.
  int GetOutput() const noexcept;
  /// Starts the pager, or passes on a piece of output. `isReadable` is false for an output that
  /// ended.
  void HandleOutput(bool isReadable);

  /// The process of the pager; 0 when it does not run.
  pid_t GetProcess() const noexcept { return process_; }
  /// The process of the pager has ended, with a status as of waitpid. After one that a signal ended
  /// the terminal gets its settings back.
  void HandleEnd(int status);

  /// No worker writes any more.
  void EndOutput() noexcept { writing_.Close(); }
  /// What was not shown yet is dropped.
  void Drop() noexcept;
  /// Whether something is still being shown.
  bool IsBusy() const noexcept { return process_ != 0 || GetOutput() >= 0; }
  /// Shows the messages that were kept. To be called when the pager has ended.
  void ShowLateMessages() const noexcept;

 private:
  void Start();
  void RestoreTerminal() const noexcept;

  std::string command_;
  bool isRestricted_;
  vtq::FileDescriptor reading_;
  vtq::FileDescriptor writing_;
  vtq::FileDescriptor lateMessages_;
  pid_t process_ = 0;
  std::optional<termios> terminal_;  ///< as it was before the pager, if the output is one
  bool isMissing_ = false;           ///< it could not be started
};

}  // namespace pciinfo
