// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/console/output.h"
#include "host/instance_diff/diff_heading.h"
#include "host/instance_diff/instance_diff.h"

namespace pciinfo {

/// Writes changes for people: each changed object with its changes in words below it.
void WriteInstanceDiff(Output& output, const DiffHeading& heading, const InstanceDiff& result);

/// Writes changes as JSON; docs/diff.md describes it.
void WriteInstanceDiffJson(Output& output, const DiffHeading& heading, const InstanceDiff& result);

}  // namespace pciinfo
