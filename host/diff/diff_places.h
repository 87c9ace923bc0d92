// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>

#include "host/diff/function_facts.h"
#include "host/diff/machine_pairs.h"

namespace pciinfo {

/// Compares where cards are.
class PlaceComparison final {
 public:
  /// The arguments must outlive it.
  PlaceComparison(const MachineState& before, const MachineState& after, const MachinePairs& pairs,
                  UnknownFacts& unknown)
      : before_(before), after_(after), pairs_(pairs), unknown_(unknown) {}

  /// Returns the change of a function that both sides have: another slot, else another port. A slot
  /// that only one side knows is no change.
  std::optional<FactChange> Compare(const StateFunction& old, const StateFunction& now);

 private:
  FactChange OtherSlot(const MachineFunction& old, const MachineFunction& now) const;
  std::optional<FactChange> ComparePorts(const MachineFunction& old, const MachineFunction& now);
  const MachineFunction* NewParent(const MachineFunction& old) const;

  const MachineState& before_;
  const MachineState& after_;
  const MachinePairs& pairs_;
  UnknownFacts& unknown_;
};

/// Returns " in PCIe Slot 3" or " on board"; empty if the place is unknown.
std::string WhereText(const MachineFunction& function, const MachineModel& machine);

/// Returns the named slot that holds a function; null if none is known.
const MachineSlot* NamedSlotOf(const MachineFunction& function, const MachineModel& machine);

}  // namespace pciinfo
