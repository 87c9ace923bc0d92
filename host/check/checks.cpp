// SPDX-License-Identifier: Apache-2.0
#include "host/check/checks.h"

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

const std::vector<Check>& AllChecks() {
  static const std::vector<Check> checks = [] {
    std::vector<Check> all;
    for (const auto* part : {&FunctionChecks(), &RegionChecks(), &SlotChecks()}) {
      all.insert(all.end(), part->begin(), part->end());
    }
    return all;
  }();
  return checks;
}

std::vector<CheckFinding> RunChecks(const CheckFacts& facts) {
  std::vector<CheckFinding> findings;
  for (const Check& check : AllChecks()) {
    std::vector<AffectedObject> objects = check.find(facts);
    if (!objects.empty()) findings.push_back({&check, std::move(objects)});
  }
  return findings;
}

}  // namespace pciinfo
