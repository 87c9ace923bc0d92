// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "host/check/finding.h"
#include "host/views/overview.h"

namespace pciinfo {

/// What a page tells about a machine.
struct ReportedMachine {
  Overview overview;
  std::vector<CheckFinding> findings;  ///< of `pciinfo check`
};

}  // namespace pciinfo
