#pragma once

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/views/show_target.h"

namespace pciinfo {

/// Writes all that is known of one thing: in words, then every property that is set.
void WriteShown(Output& output, const Shown& shown, const Terminal& terminal);

/// Writes the same as JSON, which docs/formats.md describes.
void WriteShownJson(Output& output, const Shown& shown);

}  // namespace pciinfo
