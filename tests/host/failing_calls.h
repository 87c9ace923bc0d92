// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

/// A system call that the kernel answers with an error instead of carrying it out.
struct FailingCall {
  long number;  ///< as SYS_poll
  int error;    ///< as EINTR
};

/// Makes these calls fail in this process and in all that it starts, for good. False where the
/// kernel cannot do that.
bool MakeCallsFail(const std::vector<FailingCall>& calls);
