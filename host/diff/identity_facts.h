// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/diff/fact_list.h"
#include "host/model/machine_identity.h"

namespace pciinfo {

/// Returns system, board and BIOS as facts; all are unknown without an identity.
std::vector<Fact> IdentityFacts(const std::optional<MachineIdentity>& identity);

/// Writes an identity as a line of JSON.
void WriteIdentityLine(Output& output, const MachineIdentity& identity);

/// Reads what WriteIdentityLine wrote. Throws std::runtime_error for other texts.
MachineIdentity ReadIdentityLine(const std::string& line);

}  // namespace pciinfo
