// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/diff/machine_state.h"

namespace pciinfo {

/// What of an object differs.
struct FactChange {
  std::string property;               ///< empty if the whole object was added or removed
  std::optional<std::string> before;  ///< the old value; nothing if it has none
  std::optional<std::string> after;
  std::string text;  ///< the change in words, printable
};

/// Objects that differ in the same way.
struct ObjectChange {
  enum class Op { kAdd, kRemove, kChange };

  Op op = Op::kChange;
  std::string subject;                         ///< "machine", "buses", "slot" or "function"
  std::string label;                           ///< what the objects are, printable
  std::vector<DomainAddress> functions;        ///< sorted; the old addresses of removed functions
  std::vector<DomainAddress> formerFunctions;  ///< their old addresses, if those are others
  std::vector<std::string> slots;
  std::vector<FactChange> facts;  ///< at least one
};

enum class DiffSideName { kBefore, kAfter };

/// What one side does not tell.
struct NotCompared {
  DiffSideName unknownIn = DiffSideName::kBefore;
  std::string property;
  std::string text;     ///< in words: "serial number of 3 functions"
  std::string because;  ///< empty if unknown
};

struct MachineDiff {
  std::vector<ObjectChange> changes;
  std::vector<NotCompared> notCompared;
};

/// What is compared.
struct DiffScope {
  bool all = false;  ///< also regions, interrupts and all other properties
  std::set<std::string> ignored;
};

/// Finds the differences of two machines. What one side does not tell is no difference. Changes
/// that follow from another one, such as the addresses behind a renumbered bus, are not repeated.
MachineDiff CompareMachines(const MachineState& before, const MachineState& after,
                            const DiffScope& scope);

/// Returns the properties in changes that no class declares.
std::vector<std::string> DerivedMachineProperties();

}  // namespace pciinfo
