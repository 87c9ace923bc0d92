// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/base/exit_status.h"

namespace pciinfo {

/// Writes the buffered output of the C library and ends this process with that status. Destructors
/// do not run: the kernel frees the memory faster. Builds for sanitizers and coverage end as usual.
[[noreturn]] void EndProcess(ExitStatus status);

}  // namespace pciinfo
