// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <vector>

#include "host/diff/machine_diff.h"

namespace pciinfo {

/// Returns the functions of `machine` without a partner as objects: those of a card, and of what is
/// behind it, are one. `op` is kAdd or kRemove.
std::vector<ObjectChange> WithoutPartner(const MachineModel& machine,
                                         const std::vector<std::optional<std::size_t>>& partners,
                                         ObjectChange::Op op);

}  // namespace pciinfo
