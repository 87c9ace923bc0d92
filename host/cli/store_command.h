// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "host/base/exit_status.h"
#include "host/cli/options.h"

namespace pciinfo {

/// Collects the machine of these options in a process of its own and prints it to the file that is
/// open as `descriptor`.
using MachinePrinter = std::function<ExitStatus(const Options& machine, int descriptor)>;

/// Stores machines in the database of the options: this machine, or those that the options name.
/// Throws UsageError, and std::exception for what keeps it from storing more.
ExitStatus RunStore(const Options& options, const MachinePrinter& print);

}  // namespace pciinfo
