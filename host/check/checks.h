#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/check/check_facts.h"

namespace pciinfo {

enum class Severity {
  kError,    ///< what is published is wrong, or something is missing
  kWarning,  ///< what is published may mislead
  kNote,     ///< what is published is right, and less than could be known
};

const char* SeverityText(Severity severity);

/// A thing that a check has a doubt about.
struct Doubt {
  std::string object;  ///< an address, "Tag 3", a file or a program
  std::string path;    ///< of the instance that publishes it; empty where there is none
  std::string detail;  ///< what is the matter with this one; may be empty
};

/// One kind of finding. The codes are stable; docs/findings.md describes each.
struct Check {
  const char* code;
  Severity severity;
  const char* what;    ///< a sentence
  const char* advice;  ///< one line
  std::vector<Doubt> (*find)(const CheckFacts& facts);
};

/// All checks, in the order in which findings are printed.
const std::vector<Check>& AllChecks();

/// A check that found something.
struct CheckFinding {
  const Check* check;
  std::vector<Doubt> doubts;
};

std::vector<CheckFinding> RunChecks(const CheckFacts& facts);

// The parts of the table of checks.
const std::vector<Check>& FunctionChecks();
const std::vector<Check>& RegionChecks();
const std::vector<Check>& SlotChecks();

}  // namespace pciinfo
