// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "host/base/exit_status.h"
#include "host/process/signals.h"

namespace pciinfo {

/// Calls `run` and answers what it answers, in this process if it has no children, or else in a
/// child process, which has none: there no process that belongs to somebody else can become an
/// orphan of this program's. Signals that come in meanwhile are passed on to that process, whose
/// end by a signal is thrown as EndedBySignal. Throws what `run` throws, and std::system_error.
ExitStatus RunChildless(const HeldSignals& signals, const std::function<ExitStatus()>& run);

}  // namespace pciinfo
