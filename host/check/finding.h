// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace pciinfo {

/// The gravest comes first.
enum class Severity { kError, kWarning, kNote };

const char* SeverityText(Severity severity);

/// Returns the severity of a text; that of a note for other texts.
Severity SeverityOf(const std::string& text);

/// An object that a finding is about.
struct AffectedObject {
  std::string object;  ///< an address, a slot, a file or a program, for people
  std::string path;    ///< of the published instance; empty if there is none
  std::string detail;  ///< what is wrong with this object; may be empty
  // Of the objects of the machine only:
  std::string kind = {};     ///< "function" or "slot"
  std::string address = {};  ///< with its domain; empty for slots
  std::string name = {};     ///< what the function is
};

/// A check with the objects that it found.
struct CheckFinding {
  const char* code;
  Severity severity;
  const char* what;    ///< a sentence
  const char* advice;  ///< one line
  std::vector<AffectedObject> objects;
};

/// One kind of finding. The codes are stable; docs/findings.md describes each.
template <class Facts>
struct Check {
  const char* code;
  Severity severity;
  const char* what;
  const char* advice;
  std::vector<AffectedObject> (*find)(const Facts& facts);
};

/// Returns the findings of the checks that find an object, in the order of the checks.
template <class Facts>
std::vector<CheckFinding> FindWith(const std::vector<Check<Facts>>& checks, const Facts& facts) {
  std::vector<CheckFinding> findings;
  for (const Check<Facts>& check : checks) {
    std::vector<AffectedObject> objects = check.find(facts);
    if (objects.empty()) continue;
    findings.push_back({check.code, check.severity, check.what, check.advice, std::move(objects)});
  }
  return findings;
}

/// Which findings the user wants to see.
struct FindingChoice {
  Severity least = Severity::kNote;  ///< findings that are less grave are left out
  std::vector<std::string> ignored;  ///< codes
};

/// Returns the findings without those that the choice leaves out.
std::vector<CheckFinding> Chosen(std::vector<CheckFinding> findings, const FindingChoice& choice);

/// Whether any finding has the severity, or is graver.
bool HasFinding(const std::vector<CheckFinding>& findings, Severity severity);

}  // namespace pciinfo
