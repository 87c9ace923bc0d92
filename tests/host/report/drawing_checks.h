// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "host/machine/machine_model.h"
#include "host/report/drawing.h"

/// Expects that a panel can be read: no text covers another, the edge of a box or a link, none is
/// wider than its box, and boxes are inside each other or apart, all of them inside the panel.
void ExpectLegible(const pciinfo::Panel& panel);

/// Expects that the items of the panels stand for every function of a machine exactly once, and for
/// every slot.
void ExpectComplete(const std::vector<pciinfo::Panel>& panels,
                    const pciinfo::MachineModel& machine);
