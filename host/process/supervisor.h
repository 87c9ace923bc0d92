// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "host/base/exit_status.h"
#include "host/process/signals.h"
#include "host/process/worker.h"

namespace pciinfo {

/// What plug-ins and the tools that they run may take.
struct Limits {
  std::chrono::milliseconds time{};     ///< for all steps together, from the start of the run
  std::optional<std::uint64_t> memory;  ///< bytes of address space of each process
};

struct Supervision {
  Limits limits;
  std::optional<std::string> pager;  ///< the command that shows the output, if any does
  bool showsProgress = false;        ///< on standard error, if that is a terminal
};

/// What a worker does. It calls the steps in the same order in every worker.
using Work = std::function<ExitStatus(Worker&)>;

/// Runs `work` in a child process, the worker, so that a crash or hang costs one step, not the
/// run. When a step fails that is not a needed one, another worker does the whole work again
/// without it. The worker ends within this function: only this process returns. Answers what
/// `work` answered, or kFailed after a message when it came to no end. Whatever the worker started
/// has ended then. Throws EndedBySignal, and std::system_error when there can be no worker.
ExitStatus Supervise(const Supervision& supervision, HeldSignals& signals, const Work& work);

}  // namespace pciinfo
