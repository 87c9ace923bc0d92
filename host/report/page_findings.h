// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "host/check/finding.h"
#include "host/report/markup.h"

namespace pciinfo {

/// Writes what `pciinfo check` finds: each finding with its severity, objects and advice.
void WriteFindings(Markup& markup, const std::vector<CheckFinding>& findings);

}  // namespace pciinfo
