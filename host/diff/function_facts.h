// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <vector>

#include "host/diff/fact_list.h"

namespace pciinfo {

/// A function of one side.
struct StateFunction {
  const MachineState& state;
  std::size_t place;  ///< in the functions of the model

  const MachineFunction& Get() const { return state.model.functions[place]; }
};

/// Whether both functions are of the same vendor and device.
bool AreOfOneModel(const MachineFunction& before, const MachineFunction& after);

/// Returns the changes of a card or device that is the same before and after: its driver, link,
/// firmware, serial number, subsystem, revision and class; with `all`, of every other property too.
std::vector<FactChange> CompareFunction(const StateFunction& before, const StateFunction& after,
                                        bool all, UnknownFacts& unknown);

}  // namespace pciinfo
