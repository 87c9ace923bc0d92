// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/cli/options.h"
#include "host/console/repeatable_input.h"
#include "host/process/supervisor.h"
#include "host/replay/archive_entry.h"

namespace pciinfo {

// What --timeout and --memory-limit mean for the parts of a run.

/// Of the worker.
Limits LimitsOf(const Options& options);

/// Of a capture that is unpacked.
CaptureLimits CaptureLimitsOf(const Options& options);

/// Of standard input and pipes.
InputLimits InputLimitsOf(const Options& options);

}  // namespace pciinfo
