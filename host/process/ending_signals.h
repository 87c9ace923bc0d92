#pragma once

#include <signal.h>

namespace pciinfo {

/// The signals that end the program: hang-up, interrupt and termination. One that whoever started
/// it had it ignore stays ignored and is not among them.
sigset_t EndingSignals() noexcept;

/// Ends this process the way `signal` does for a program that does not handle it.
void EndBySignal(int signal) noexcept;

}  // namespace pciinfo
