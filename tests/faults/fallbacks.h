// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tests/faults/rounds.h"

/// Checks the results after a fault: instances may be missing, and a property may have its fallback
/// value. Everything else is wrong. Returns what is wrong; empty if nothing is.
std::string JudgeFallbacks(const Strike& strike);

/// Whether the log, or an exception from the plug-in, reports the fault: a record that is not
/// written without the fault, and that is at least a status or known to report a failure.
bool IsTold(const Strike& strike);

/// JudgeFallbacks, and IsTold if the fault changed anything.
std::string JudgeToldFallbacks(const Strike& strike);
