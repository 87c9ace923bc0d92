// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

#include <cstddef>
#include <string>
#include <utility>

#include "framework/export.h"

namespace vtq {

/// Owns one open file descriptor, or none (-1), and closes it in its destructor.
class FileDescriptor final {
 public:
  FileDescriptor() noexcept = default;
  explicit FileDescriptor(int descriptor) noexcept : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    other.Close();
    return *this;
  }
  ~FileDescriptor() { Close(); }

  bool IsOpen() const noexcept { return descriptor_ >= 0; }
  int Get() const noexcept { return descriptor_; }
  /// Leaves the descriptor open, and its number to the caller.
  int Release() noexcept { return std::exchange(descriptor_, -1); }
  void Close() noexcept {
    if (IsOpen()) ::close(std::exchange(descriptor_, -1));
  }

 private:
  int descriptor_ = -1;
};

/// Reads once, again where a signal interrupts it, and appends what came to `text`. Returns the
/// number of bytes, 0 at the end, -1 on an error (errno says which).
VTQ_EXPORT ssize_t AppendFrom(int descriptor, std::string& text);

}  // namespace vtq
