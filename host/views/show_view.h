// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/views/show_target.h"

namespace pciinfo {

/// Writes everything known about one instance: first in words, then every property that is set.
void WriteShown(Output& output, const Shown& shown, const Terminal& terminal);

/// Writes the same as JSON; docs/formats.md describes it.
void WriteShownJson(Output& output, const Shown& shown);

}  // namespace pciinfo
