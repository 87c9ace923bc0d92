#pragma once

namespace pciinfo {

/// What the program answers to its caller.
enum ExitStatus : int {
  kAllCollected = 0,  ///< a thing that this machine does not have is no failure
  kFailed = 1,        ///< something could not be collected or written
  kWrongUsage = 2,
  /// The reader has closed the pipe: what a shell shows for a program that SIGPIPE ended, as it
  /// ends other listing tools.
  kPipeClosed = 141,
};

}  // namespace pciinfo
