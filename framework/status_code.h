#pragma once

namespace NQZMVTQ20 {

/// Scope of the framework's status codes. A code is passed on as a plain number: 0 is success,
/// everything else says why not.
struct TVTQStatusCode {
  enum EVTQStatusCode : int {
    kSuccess = 0,          ///< done
    kInvalidArgument = 1,  ///< the caller passed a null or otherwise unusable argument
    kNotFound = 2,         ///< the thing asked for does not exist, or a walk has reached its end
    kFailure = 3,          ///< could not be done; no more is known
    kAccessDenied = 4,     ///< exists, but this user may not read it
    kBufferTooSmall = 5,   ///< the caller's buffer cannot hold the answer; nothing was copied
    kCorruptData = 6,      ///< the data is there, but its checksum, length or layout is wrong
  };
};

}  // namespace NQZMVTQ20
