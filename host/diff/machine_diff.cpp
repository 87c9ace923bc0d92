// SPDX-License-Identifier: Apache-2.0
#include "host/diff/machine_diff.h"

#include <iterator>

#include "host/diff/added_functions.h"
#include "host/diff/changed_functions.h"
#include "host/diff/changed_slots.h"
#include "host/diff/identity_facts.h"
#include "host/diff/machine_pairs.h"

namespace pciinfo {
namespace {

std::vector<ObjectChange> ChangedIdentity(const MachineState& before, const MachineState& after,
                                          const DiffScope& scope, UnknownFacts& unknown) {
  if (before.identity.has_value() != after.identity.has_value()) {
    const auto side = before.identity ? DiffSideName::kAfter : DiffSideName::kBefore;
    unknown.Add(side, {"Machine", "machine, board and BIOS", {}, "saved instances do not tell it"},
                "");
    return {};
  }
  ObjectChange change;
  change.subject = "machine";
  change.facts =
      CompareFacts(IdentityFacts(before.identity), IdentityFacts(after.identity), "", unknown);
  std::erase_if(change.facts,
                [&scope](const auto& fact) { return scope.ignored.contains(fact.property); });
  if (change.facts.empty()) return {};
  return {change};
}

/// Saved instances may be of slots only.
bool TellsFunctions(const MachineState& state) {
  return state.identity.has_value() || !state.model.functions.empty();
}

/// Returns the functions that only `state` has, if the other side tells functions at all.
std::vector<ObjectChange> FunctionsOfOneSide(
    const MachineState& state, const std::vector<std::optional<std::size_t>>& partners,
    const MachineState& other, DiffSideName otherSide, UnknownFacts& unknown) {
  const bool isNew = otherSide == DiffSideName::kBefore;
  if (TellsFunctions(other)) {
    return WithoutPartner(state.model, partners,
                          isNew ? ObjectChange::Op::kAdd : ObjectChange::Op::kRemove);
  }
  for (std::size_t i = 0; i < partners.size(); ++i) unknown.Add(otherSide, {}, "function");
  return {};
}

}  // namespace

MachineDiff CompareMachines(const MachineState& before, const MachineState& after,
                            const DiffScope& scope) {
  MachineDiff diff;
  const auto append = [&diff](std::vector<ObjectChange> changes) {
    diff.changes.insert(diff.changes.end(), std::make_move_iterator(changes.begin()),
                        std::make_move_iterator(changes.end()));
  };
  UnknownFacts unknown(scope.ignored);
  const MachinePairs pairs = PairMachines(before, after);
  append(ChangedIdentity(before, after, scope, unknown));
  append(ChangedSlots(before, after, pairs, scope, unknown));
  append(FunctionsOfOneSide(before, pairs.functions.toAfter, after, DiffSideName::kAfter, unknown));
  append(
      FunctionsOfOneSide(after, pairs.functions.toBefore, before, DiffSideName::kBefore, unknown));
  append(ChangedFunctions(before, after, pairs, scope, unknown));
  diff.notCompared = unknown.GetList();
  return diff;
}

std::vector<std::string> DerivedMachineProperties() {
  std::vector<std::string> names = {"Address", "Bus", "Card", "Class", "Port", "Slot", "Subsystem"};
  for (const Fact& fact : IdentityFacts(std::nullopt)) names.push_back(fact.property);
  return names;
}

}  // namespace pciinfo
