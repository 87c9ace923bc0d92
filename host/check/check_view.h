#pragma once

#include <vector>

#include "host/check/checks.h"
#include "host/console/output.h"

namespace pciinfo {

/// Writes findings as text: each with its code, its severity, the objects (the first ones of many)
/// and the advice.
void WriteFindings(Output& output, const std::vector<CheckFinding>& findings);

/// The same as JSON with every object; docs/findings.md describes it.
void WriteFindingsJson(Output& output, const std::vector<CheckFinding>& findings);

/// Whether something is worse than a note.
bool AreDoubtful(const std::vector<CheckFinding>& findings);

}  // namespace pciinfo
