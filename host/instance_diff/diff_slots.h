// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/instance_diff/change_list.h"
#include "host/instance_diff/diff_names.h"

namespace pciinfo {

/// Compares the slots of two inventories and notes the names that paired slots share. Does nothing
/// if the inventories do not both cover slots.
void CompareSlots(const vtq::Namespace& before, const vtq::Namespace& after,
                  const ComparedClasses& classes, ChangeList& changes, SlotNames& oldSlots,
                  SlotNames& newSlots);

}  // namespace pciinfo
