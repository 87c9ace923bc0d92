#pragma once

#include "host/base/exit_status.h"
#include "host/cli/diff_side.h"
#include "host/cli/options.h"
#include "host/process/stages.h"

namespace pciinfo {

// Exit statuses of `diff`, the same as those of diff(1).
inline constexpr ExitStatus kSidesEqual = kAllCollected;
inline constexpr ExitStatus kSidesDiffer = kFailed;
inline constexpr ExitStatus kDiffTrouble = kWrongUsage;

/// Compares the two sides that the options name and prints the differences. `run` collects
/// machines. Returns in every process that it creates, like RunInStages.
ExitStatus RunDiff(const Options& options, const Limits& limits, const CommandRunner& run);

}  // namespace pciinfo
