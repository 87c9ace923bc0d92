// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace NQZMVTQ20 {

/// The framework's status codes. A code is passed on as a plain number: 0 is success, every other
/// code is a reason of failure.
struct TVTQStatusCode {
  enum EVTQStatusCode : int {
    kSuccess = 0,          ///< done
    kInvalidArgument = 1,  ///< the caller passed a null or otherwise unusable argument
    kNotFound = 2,         ///< the requested item does not exist, or a walk has reached its end
    kFailure = 3,          ///< failed for another reason
    kAccessDenied = 4,     ///< exists, but this user may not read it
    kBufferTooSmall = 5,   ///< the caller's buffer is too small; nothing was copied
    kCorruptData = 6,      ///< the data exists, but its checksum, length or layout is wrong
  };
};

}  // namespace NQZMVTQ20
