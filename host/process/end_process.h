// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/base/exit_status.h"

namespace pciinfo {

/// Ends this process with that status, after the output of the C library is written. What the
/// process holds is not taken apart, which would take time and change nothing.
[[noreturn]] void EndProcess(ExitStatus status);

}  // namespace pciinfo
