// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/base/exit_status.h"
#include "host/cli/options.h"

namespace pciinfo {

/// Does what the options ask for: result to standard output, messages to standard error. Throws
/// UsageError, std::exception for what keeps it from collecting anything, and EndedBySignal.
ExitStatus RunCommand(const Options& options);

}  // namespace pciinfo
