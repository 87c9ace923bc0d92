// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "framework/cim_value.h"
#include "runtime/repository.h"

namespace pciinfo {

/// One difference between two inventories.
struct InstanceChange {
  enum class Op {
    kAdd,      ///< an instance that only the new inventory has
    kRemove,   ///< an instance that only the old inventory has
    kMove,     ///< a function is in another slot
    kReplace,  ///< a property has another value
  };

  Op op = Op::kReplace;
  std::string subject;  ///< "function", "slot", "board", "listing", "association", "system"
                        ///< or "instance" of another class
  std::string label;    ///< the changed object in words, printable
  std::shared_ptr<vtq::Instance> from;  ///< the instance in the old inventory; null if none
  std::shared_ptr<vtq::Instance> to;    ///< the instance in the new inventory; null if none
  /// A declared property or one of DerivedProperties; empty if an instance was added or removed.
  std::string property;
  NQZMVTQ20::TCIMValue oldValue;
  NQZMVTQ20::TCIMValue newValue;
  std::string text;  ///< the change in words, printable
};

/// One inventory, and whether it covers all classes.
struct InstanceDiffInput {
  const vtq::Namespace* repository = nullptr;
  /// If false, classes without instances may have been left out and are not compared.
  bool hasAllClasses = true;
};

struct InstanceDiff {
  std::vector<InstanceChange> changes;
  /// Classes that only one inventory covers.
  std::vector<std::string> onlyOld;
  std::vector<std::string> onlyNew;
  bool hasCompared = false;  ///< whether both inventories cover some class
};

/// Returns the properties that no class declares: "Card" (another card at the same place), "Slot"
/// (the slot of a function), "Functions" (the functions in a slot), "LinkWidth" and "LinkSpeed".
const std::vector<std::string>& DerivedProperties();

/// Finds all differences except in the properties in `ignored`. Instances of the two inventories
/// are paired by what they have in common (see PairItems), so that renumbered buses or tags do not
/// turn them into other slots or functions.
InstanceDiff CompareInstances(const InstanceDiffInput& before, const InstanceDiffInput& after,
                              const std::set<std::string>& ignored);

}  // namespace pciinfo
