// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <future>
#include <mutex>
#include <thread>

namespace topology {

/// Work on a second thread. It begins on another processor than that of the calling thread, if this
/// process may use one.
class SecondThread final {
 public:
  /// Begins `work`. Where the system lets this process start no thread, Finish does it.
  explicit SecondThread(std::function<void()> work);
  SecondThread(const SecondThread&) = delete;
  SecondThread& operator=(const SecondThread&) = delete;
  /// Waits until the work has ended, if it has begun.
  ~SecondThread();

  /// Waits until the work has ended. Throws what it throws. To be called once.
  void Finish();

 private:
  std::packaged_task<void()> work_;
  std::mutex begin_;    // locked until the thread may begin
  std::thread thread_;  // none where none could be started
};

}  // namespace topology
