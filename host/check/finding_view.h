// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "host/check/finding.h"
#include "host/console/output.h"

namespace pciinfo {

/// Writes findings as text: each with its severity, code, objects (only the first of many) and
/// advice.
void WriteFindings(Output& output, const std::vector<CheckFinding>& findings);

/// Returns findings with all objects as an array; docs/findings.md describes it.
nlohmann::ordered_json FindingsJson(const std::vector<CheckFinding>& findings);

/// Writes findings as JSON with all objects; docs/findings.md describes it.
void WriteFindingsJson(Output& output, const std::vector<CheckFinding>& findings);

}  // namespace pciinfo
