// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/instance_diff/change_list.h"
#include "host/instance_diff/diff_names.h"

namespace pciinfo {

/// Compares the PCI functions of two inventories: their cards, places, links and properties.
void CompareFunctions(const vtq::Namespace& before, const vtq::Namespace& after,
                      const ComparedClasses& classes, const SlotNames& oldSlots,
                      const SlotNames& newSlots, ChangeList& changes);

}  // namespace pciinfo
