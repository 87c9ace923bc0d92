#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "framework/cim_value.h"
#include "runtime/repository.h"

namespace pciinfo {

/// One difference between two inventories.
struct Change {
  enum class Op {
    kAdd,      ///< an instance that only the new one has
    kRemove,   ///< one that only the old one has
    kMove,     ///< a function that is in another slot
    kReplace,  ///< a property that has another value
  };

  Op op = Op::kReplace;
  std::string subject;  ///< "function", "slot", "board", "listing", "association" or "system"
  std::string label;    ///< what it is about, in words, printable
  std::shared_ptr<vtq::Instance> from;  ///< the instance in the old inventory, null where none is
  std::shared_ptr<vtq::Instance> to;    ///< the same in the new one
  /// A declared property, or one of DerivedProperties; empty when instances come and go.
  std::string property;
  NQZMVTQ20::TCIMValue oldValue;
  NQZMVTQ20::TCIMValue newValue;
  std::string text;  ///< what has changed, in words, printable
};

/// One inventory, and which classes it speaks about.
struct DiffInput {
  const vtq::Namespace* repository = nullptr;
  /// Otherwise a class without instances is one that somebody left out.
  bool hasAllClasses = true;
};

struct DiffResult {
  std::vector<Change> changes;
  /// Classes that only one of the two speaks about.
  std::vector<std::string> onlyOld;
  std::vector<std::string> onlyNew;
  bool hasCompared = false;  ///< there was a class that both speak about
};

/// Properties that no class declares: "Card" (another card at the same place), "Slot" (what a
/// function sits in), "Functions" (what sits in a slot), "LinkWidth" and "LinkSpeed".
const std::vector<std::string>& DerivedProperties();

/// What differs, but for the properties in `ignored`. Slots, cards and functions are the same when
/// they have as much in common as any two, so that other bus or tag numbers do not make others of
/// them. Every declared property that differs is in the answer.
DiffResult Compare(const DiffInput& before, const DiffInput& after,
                   const std::set<std::string>& ignored);

}  // namespace pciinfo
