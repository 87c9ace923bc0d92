// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <signal.h>

#include "runtime/file_descriptor.h"

namespace pciinfo {

/// Holds back the signals that would end this process, as long as this object lives: they are read
/// instead, at a moment when nothing half made is left behind by ending. The end of a child is read
/// the same way. A signal that whoever started the program had it ignore stays ignored. There is
/// one object at a time.
class HeldSignals final {
 public:
  /// Throws std::system_error.
  HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;
  ~HeldSignals() { Release(); }

  /// A descriptor that is readable when Take has something to give.
  int GetDescriptor() const noexcept { return file_.Get(); }
  /// The next signal that came in (SIGCHLD for the end of a child); 0 when there is none.
  int Take() const noexcept;
  /// Ends the holding, for a process that was forked in the meantime and is to end by signals.
  void Release() noexcept;

 private:
  sigset_t held_{};
  sigset_t before_{};
  vtq::FileDescriptor file_;
};

/// A signal came in that ends the program. It is thrown so that everything half made is removed on
/// the way to the main function, which ends by it.
struct EndedBySignal {
  int signal;
};

/// Ends this process the way `signal` does for a program that does not handle it.
void EndBySignal(int signal) noexcept;

}  // namespace pciinfo
