// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "runtime/file_descriptor.h"

namespace pciinfo {

/// How long to wait for the end of an input, and how much of it to read.
struct InputLimits {
  std::uint64_t bytes = 0;
  std::chrono::milliseconds time{};
};

/// A file that a user named, or standard input for "-", which can be opened more than once: the
/// content of standard input, and of a pipe, is kept in memory.
class RepeatableInput final {
 public:
  /// Waits for the end of standard input or a pipe. Throws std::runtime_error, which says which
  /// input it is, when it cannot be read, is too large or comes to no end in time.
  RepeatableInput(const std::string& name, const InputLimits& limits);

  /// Returns the name of a file with the content, which exists as long as this object. It is the
  /// name that was given for all but standard input and pipes.
  const std::string& GetFile() const noexcept { return file_; }

 private:
  vtq::FileDescriptor memory_;
  std::string file_;
};

}  // namespace pciinfo
