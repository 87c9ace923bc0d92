#pragma once

#include <signal.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "runtime/file_descriptor.h"

namespace pciinfo {

/// Stands beside a long piece of work: tells on standard error what is being done once it takes
/// more than a second, if that is a terminal, and cleans up when a signal (hang-up, interrupt,
/// termination) ends the program. There is one at a time.
class WorkWatch final {
 public:
  /// `cleanUp` is called at most once, in another thread, at a signal, right before the program
  /// ends by it. Throws std::system_error.
  explicit WorkWatch(std::function<void()> cleanUp);
  WorkWatch(const WorkWatch&) = delete;
  WorkWatch& operator=(const WorkWatch&) = delete;
  ~WorkWatch();

  /// What is being done from now on, in words.
  void Tell(const std::string& what);

  /// As long as this is held, a signal waits, but no more than a second: what is being written to
  /// may never take it.
  std::unique_lock<std::timed_mutex> Hold() { return std::unique_lock(mutex_); }

 private:
  void Run();
  void EndBy(int signal);
  void Show();
  void ClearLine() const;

  std::function<void()> cleanUp_;
  sigset_t watched_{};
  sigset_t before_{};
  vtq::FileDescriptor signals_;
  vtq::FileDescriptor end_;
  bool isTerminal_;
  bool shown_ = false;
  std::timed_mutex mutex_;  ///< for what is being done, and the work itself
  std::string what_;
  std::thread thread_;
};

}  // namespace pciinfo
