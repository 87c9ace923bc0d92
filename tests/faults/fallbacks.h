#pragma once

#include <string>

#include "tests/faults/rounds.h"

/// What may become of answers when something fails: instances are missing, or a property fell back
/// to what is known without the thing that failed. Everything else is wrong. Says what is wrong
/// about a strike; empty when nothing is.
std::string JudgeFallbacks(const Strike& strike);

/// Whether the log, or an exception that left the plug-in, tells of the strike: a record that is
/// not there without the fault, at least as severe as a status or known to tell a failure.
bool IsTold(const Strike& strike);

/// JudgeFallbacks, and IsTold where the strike changed anything.
std::string JudgeToldFallbacks(const Strike& strike);
