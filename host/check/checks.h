// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/check/check_facts.h"

namespace pciinfo {

enum class Severity {
  kError,    ///< published data is wrong or missing
  kWarning,  ///< published data may be misleading
  kNote,     ///< published data is correct but incomplete
};

const char* SeverityText(Severity severity);

/// An object that a finding is about.
struct AffectedObject {
  std::string object;  ///< an address, "Tag 3", a file or a program
  std::string path;    ///< of the published instance; empty if there is none
  std::string detail;  ///< what is wrong with this object; may be empty
};

/// One kind of finding. The codes are stable; docs/findings.md describes each.
struct Check {
  const char* code;
  Severity severity;
  const char* what;    ///< a sentence
  const char* advice;  ///< one line
  std::vector<AffectedObject> (*find)(const CheckFacts& facts);
};

/// All checks, in the order in which findings are printed.
const std::vector<Check>& AllChecks();

/// A check with the objects that it found.
struct CheckFinding {
  const Check* check;
  std::vector<AffectedObject> objects;
};

std::vector<CheckFinding> RunChecks(const CheckFacts& facts);

// The parts of AllChecks.
const std::vector<Check>& FunctionChecks();
const std::vector<Check>& RegionChecks();
const std::vector<Check>& SlotChecks();

}  // namespace pciinfo
