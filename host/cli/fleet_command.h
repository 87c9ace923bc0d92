// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/base/exit_status.h"
#include "host/cli/diff_command.h"
#include "host/cli/options.h"

namespace pciinfo {

/// Asks a database of machines what the options say and prints the answer; `run` runs the work.
/// Throws UsageError and what OpenFleet and Ask throw.
ExitStatus RunFleet(const Options& options, const Terminal& terminal, const WorkRunner& run);

}  // namespace pciinfo
