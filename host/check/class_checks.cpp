// SPDX-License-Identifier: Apache-2.0
#include "host/check/class_checks.h"

namespace pciinfo {

const std::vector<ClassCheck>& ClassChecks() {
  static const std::vector<ClassCheck> checks = [] {
    std::vector<ClassCheck> all;
    for (const auto* part : {&FunctionClassChecks(), &RegionClassChecks(), &SlotClassChecks()}) {
      all.insert(all.end(), part->begin(), part->end());
    }
    return all;
  }();
  return checks;
}

}  // namespace pciinfo
