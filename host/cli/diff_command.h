#pragma once

#include "host/base/exit_status.h"
#include "host/cli/diff_side.h"
#include "host/cli/options.h"
#include "host/process/stages.h"

namespace pciinfo {

// What `diff` answers, as programs of its kind do.
inline constexpr ExitStatus kSidesEqual = kAllCollected;
inline constexpr ExitStatus kSidesDiffer = kFailed;
inline constexpr ExitStatus kDiffTrouble = kWrongUsage;

/// Compares the two sides that the options name and prints what differs. Machines are collected by
/// `run`. Returns in every process that it makes, like RunInStages.
ExitStatus RunDiff(const Options& options, const Limits& limits, const CommandRunner& run);

}  // namespace pciinfo
