#pragma once

#include "host/output.h"
#include "host/show_target.h"
#include "host/terminal.h"

namespace pciinfo {

/// Writes all that is known of one thing: in words, then every property that is set.
void WriteShown(Output& output, const Shown& shown, const Terminal& terminal);

/// Writes the same as JSON, which docs/formats.md describes.
void WriteShownJson(Output& output, const Shown& shown);

}  // namespace pciinfo
