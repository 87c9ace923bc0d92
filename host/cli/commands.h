#pragma once

#include "host/base/exit_status.h"
#include "host/cli/options.h"

namespace pciinfo {

/// Runs the command: writes the result to standard output and messages to standard error. Throws
/// UsageError, or another std::exception when nothing could be collected.
ExitStatus RunCommand(Options options);

}  // namespace pciinfo
