// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "host/check/class_facts.h"
#include "host/check/finding.h"

namespace pciinfo {

/// A check of what the seven classes of the inventory say of a machine. An error means that
/// published data is wrong or missing for a reason that can be mended, a warning that it may be
/// misleading, a note that it is incomplete, or that the classes cannot express it.
using ClassCheck = Check<ClassFacts>;

/// All checks of the classes, in the order in which findings are printed.
const std::vector<ClassCheck>& ClassChecks();

// The parts of ClassChecks.
const std::vector<ClassCheck>& FunctionClassChecks();
const std::vector<ClassCheck>& RegionClassChecks();
const std::vector<ClassCheck>& SlotClassChecks();

}  // namespace pciinfo
