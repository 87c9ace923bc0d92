// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/diff/machine_diff.h"
#include "host/instance_diff/diff_heading.h"

namespace pciinfo {

/// Writes changes for people: each changed object with its changes in words below it.
void WriteMachineDiff(Output& output, const DiffHeading& heading, const MachineDiff& diff,
                      bool hasDomains);

/// Writes changes as JSON; docs/diff.md describes it.
void WriteMachineDiffJson(Output& output, const DiffHeading& heading, const MachineDiff& diff);

/// Returns one line for each side that does not tell what the other one tells, without a line end.
std::vector<std::string> NotComparedLines(const DiffHeading& heading, const MachineDiff& diff);

}  // namespace pciinfo
