// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "host/base/exit_status.h"
#include "host/cli/diff_side.h"
#include "host/cli/options.h"
#include "host/process/worker.h"

namespace pciinfo {

// Exit statuses of `diff`, the same as those of diff(1).
inline constexpr ExitStatus kSidesEqual = kAllCollected;
inline constexpr ExitStatus kSidesDiffer = kFailed;
inline constexpr ExitStatus kDiffTrouble = kWrongUsage;

/// Does work in a worker, see Supervise.
using WorkRunner = std::function<ExitStatus(const std::function<ExitStatus(Worker&)>& work)>;

/// Compares the two sides that the options name and prints what differs. `compare` runs the
/// comparison, `view` the collection of a side.
ExitStatus RunDiff(const Options& options, const WorkRunner& compare, const CommandRunner& view);

}  // namespace pciinfo
