// SPDX-License-Identifier: Apache-2.0
#include "host/check/finding.h"

#include <algorithm>

namespace pciinfo {

const char* SeverityText(Severity severity) {
  switch (severity) {
    case Severity::kError:
      return "error";
    case Severity::kWarning:
      return "warning";
    case Severity::kNote:
      break;
  }
  return "note";
}

Severity SeverityOf(const std::string& text) {
  for (const Severity severity : {Severity::kError, Severity::kWarning}) {
    if (text == SeverityText(severity)) return severity;
  }
  return Severity::kNote;
}

std::vector<CheckFinding> Chosen(std::vector<CheckFinding> findings, const FindingChoice& choice) {
  std::erase_if(findings, [&choice](const CheckFinding& finding) {
    const auto& ignored = choice.ignored;
    return finding.severity > choice.least ||
           std::find(ignored.begin(), ignored.end(), finding.code) != ignored.end();
  });
  return findings;
}

bool HasFinding(const std::vector<CheckFinding>& findings, Severity severity) {
  return std::any_of(findings.begin(), findings.end(), [severity](const CheckFinding& finding) {
    return finding.severity <= severity;
  });
}

}  // namespace pciinfo
