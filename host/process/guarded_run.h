// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "host/base/exit_status.h"

namespace pciinfo {

/// What `run` answers; where it throws, a message on standard error and the exit status for that.
ExitStatus RunGuarded(const std::function<ExitStatus()>& run);

}  // namespace pciinfo
