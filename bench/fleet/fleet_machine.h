// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bench/fleet/machine_state.h"
#include "host/record/machine_line.h"

namespace bench {

/// Returns what `pciinfo` would collect of a machine of the fleet in this state, in the week of the
/// plan. The findings are those of the checks.
pciinfo::CollectedMachine CollectedOf(const FleetPlan& plan, const MachineState& state);

}  // namespace bench
