// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>

#include "host/console/output.h"
#include "host/diff/diff.h"

namespace pciinfo {

/// What is printed besides the changes.
struct DiffHeading {
  std::string before;  ///< the name of the old side
  std::string after;   ///< the name of the new side
  std::set<std::string> ignored;
};

/// Writes changes for people: each changed object with its changes in words below it.
void WriteDiff(Output& output, const DiffHeading& heading, const DiffResult& result);

/// Writes changes as JSON; docs/diff.md describes it.
void WriteDiffJson(Output& output, const DiffHeading& heading, const DiffResult& result);

}  // namespace pciinfo
