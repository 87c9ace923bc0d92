#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>

#include "host/base/exit_status.h"

namespace pciinfo {

/// How a process ended that was run for its output.
struct RelayedResult {
  std::string output;
  bool isTooLarge = false;  ///< it wrote more than allowed, and was ended
  bool hasExited = false;   ///< by itself, and not by a signal
  int status = 0;           ///< its exit status then
};

/// Runs `run` in a new process and takes what it writes to standard output, up to `most` bytes (0:
/// any number). Its messages appear on standard error as they come, with `name` in front of them.
/// Throws std::system_error when there can be no process.
RelayedResult RunRelayed(const std::string& name, std::size_t most,
                         const std::function<ExitStatus()>& run);

/// Reads once, again where a signal interrupts it, and appends what came to `text`. Answers how
/// many bytes, 0 at the end, -1 on an error (errno says which).
ssize_t AppendBytes(int descriptor, std::string& text);

}  // namespace pciinfo
