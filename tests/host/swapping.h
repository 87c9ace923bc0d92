// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fcntl.h>
#include <stdio.h>

#include <atomic>
#include <string>
#include <thread>

/// Exchanges two names over and over in a thread, as long as it lives, as another user can who may
/// write to their directories.
class Swapping final {
 public:
  Swapping(const std::string& one, const std::string& other)
      : thread_([this, one, other] {
          while (!isOver_) {
            renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE);
          }
        }) {}
  Swapping(const Swapping&) = delete;
  Swapping& operator=(const Swapping&) = delete;
  ~Swapping() {
    isOver_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> isOver_ = false;
  std::thread thread_;
};
