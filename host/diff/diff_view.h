#pragma once

#include <set>
#include <string>

#include "host/console/output.h"
#include "host/diff/diff.h"

namespace pciinfo {

/// What a comparison's reader is told besides the changes.
struct DiffHeading {
  std::string before;  ///< the name of the old side
  std::string after;   ///< the name of the new one
  std::set<std::string> ignored;
};

/// Writes changes for people: what they are about, and below it each change in words.
void WriteDiff(Output& output, const DiffHeading& heading, const DiffResult& result);

/// The same as JSON; docs/diff.md describes it.
void WriteDiffJson(Output& output, const DiffHeading& heading, const DiffResult& result);

}  // namespace pciinfo
