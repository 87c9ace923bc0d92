// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/diff/machine_diff.h"

namespace pciinfo {

/// Returns the changes of all properties that both sides have, except those in `without`.
std::vector<FactChange> CompareAllProperties(const NamedProperties& before,
                                             const NamedProperties& after,
                                             const std::set<std::string>& without);

}  // namespace pciinfo
