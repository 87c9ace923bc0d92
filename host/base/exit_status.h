// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// Exit statuses of the program.
enum ExitStatus : int {
  kAllCollected = 0,  ///< hardware that the machine lacks is not an error
  kFailed = 1,        ///< something could not be collected or written
  kWrongUsage = 2,
  /// The reader has closed the pipe. Shells show this status (128 + SIGPIPE) for a program that
  /// SIGPIPE ended, so scripts can treat pciinfo like other listing tools.
  kPipeClosed = 141,
};

}  // namespace pciinfo
