// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/report/markup.h"
#include "host/views/overview.h"

namespace pciinfo {

/// Writes what is in doubt or not known, under titles, with the evidence.
void WriteDoubts(Markup& markup, const Overview& overview);

}  // namespace pciinfo
