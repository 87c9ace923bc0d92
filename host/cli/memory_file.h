// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "runtime/file_descriptor.h"

namespace pciinfo {

/// A file in memory, which ends with it. Throws std::system_error where the system makes none.
class MemoryFile final {
 public:
  MemoryFile();

  int Get() const noexcept { return file_.Get(); }
  /// Returns all that was written to it.
  std::string Read() const;

 private:
  vtq::FileDescriptor file_;
};

/// As long as this lives, what this process and those that are forked from it write to standard
/// output goes to a file in memory. Throws std::system_error if that cannot be arranged.
class StandardOutputTo final {
 public:
  explicit StandardOutputTo(const MemoryFile& file);
  StandardOutputTo(const StandardOutputTo&) = delete;
  StandardOutputTo& operator=(const StandardOutputTo&) = delete;
  ~StandardOutputTo();

 private:
  vtq::FileDescriptor before_;
};

}  // namespace pciinfo
