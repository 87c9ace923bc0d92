// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/record/overview_json.h"

namespace pciinfo {

/// Returns names and texts of what is known of the whole machine, as "BIOS" and its version; what
/// is not known is left out.
std::vector<std::pair<std::string, std::string>> OverviewFacts(const Overview& overview);

/// Writes the machine, its slots with their cards, the cards outside slots, and in a line each what
/// is doubtful or could not be read. Bridges and chipset functions outside slots are only counted.
void WriteOverview(Output& output, const Overview& overview, const Terminal& terminal);

/// Writes the same as JSON; docs/formats.md describes it.
void WriteOverviewJson(Output& output, const Overview& overview);

}  // namespace pciinfo
