// SPDX-License-Identifier: Apache-2.0
#include "host/diff/changed_slots.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>
#include <set>

#include "host/console/text.h"
#include "host/diff/property_changes.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

Fact StateFact(const MachineSlot& slot) {
  const bool isKnown = slot.state != SlotState::kUnknown;
  return {"State", "state", isKnown ? std::optional(StateText(slot)) : std::nullopt};
}

/// The changes of slots that both sides have.
class SlotComparison final {
 public:
  SlotComparison(const MachineState& before, const MachineState& after, const MachinePairs& pairs,
                 const DiffScope& scope, UnknownFacts& unknown)
      : before_(before), after_(after), pairs_(pairs), scope_(scope), unknown_(unknown) {}

  std::optional<ObjectChange> Compare(std::size_t old, std::size_t now) const {
    ObjectChange change;
    change.subject = "slot";
    change.facts = FactsOf(old, now);
    std::erase_if(change.facts,
                  [this](const auto& fact) { return scope_.ignored.contains(fact.property); });
    if (change.facts.empty()) return std::nullopt;
    change.label = NameOf(after_.model.slots[now], after_.model);
    change.slots = {after_.model.slots[now].name};
    return change;
  }

 private:
  std::vector<FactChange> FactsOf(std::size_t old, std::size_t now) const {
    std::vector<FactChange> facts;
    CompareNames(old, now, facts);
    if (!HasOtherCards(old, now)) {
      const auto state = CompareFacts({StateFact(before_.model.slots[old])},
                                      {StateFact(after_.model.slots[now])}, "slot", unknown_);
      facts.insert(facts.end(), state.begin(), state.end());
    }
    if (!scope_.all) return facts;
    const auto rest =
        CompareAllProperties(before_.slots[old], after_.slots[now], {"Name", "Source", "State"});
    facts.insert(facts.end(), rest.begin(), rest.end());
    return facts;
  }

  /// Sources have names of their own: a slot of another source is not renamed, but known better.
  void CompareNames(std::size_t old, std::size_t now, std::vector<FactChange>& facts) const {
    const MachineSlot& slot = before_.model.slots[old];
    const MachineSlot& newSlot = after_.model.slots[now];
    if (!slot.IsNamed() || slot.source != newSlot.source || slot.name == newSlot.name) return;
    facts.push_back({"Name", Printable(slot.name), Printable(newSlot.name),
                     fmt::format("renamed, was {}", Printable(slot.name))});
  }

  bool HasOtherCards(std::size_t old, std::size_t now) const {
    const auto isElsewhere = [](const std::vector<std::size_t>& functions, const auto& partners,
                                const MachineModel& other, std::size_t slot) {
      return std::any_of(functions.begin(), functions.end(), [&](std::size_t function) {
        return !partners[function] || other.functions[*partners[function]].slot != slot;
      });
    };
    const Partners& partners = pairs_.functions;
    return isElsewhere(before_.model.slots[old].functions, partners.toAfter, after_.model, now) ||
           isElsewhere(after_.model.slots[now].functions, partners.toBefore, before_.model, old);
  }

  const MachineState& before_;
  const MachineState& after_;
  const MachinePairs& pairs_;
  const DiffScope& scope_;
  UnknownFacts& unknown_;
};

std::set<std::string> SourcesOf(const MachineModel& machine) {
  std::set<std::string> sources;
  for (const MachineSlot& slot : machine.slots) sources.insert(slot.source);
  return sources;
}

/// One side of a comparison, whose slots may have no partner on the other side.
struct SlotSide {
  const MachineModel& machine;
  const std::vector<std::optional<std::size_t>>& partners;
  const MachineModel& other;
  DiffSideName otherName;
};

/// Adds the slots that only one side has as one object. A side without any slot of their source may
/// not have been able to read it.
void AddAlone(const SlotSide& side, UnknownFacts& unknown, std::vector<ObjectChange>& changes) {
  const bool isNew = side.otherName == DiffSideName::kBefore;
  const std::set<std::string> otherSources = SourcesOf(side.other);
  std::vector<std::string> names;
  ObjectChange change;
  for (std::size_t i = 0; i < side.machine.slots.size(); ++i) {
    const MachineSlot& slot = side.machine.slots[i];
    if (side.partners[i] || !slot.IsNamed()) continue;
    if (!otherSources.contains(slot.source)) {
      unknown.Add(side.otherName, {Printable(slot.source), "", std::nullopt}, "slot");
      continue;
    }
    names.push_back(NameOf(slot, side.machine));
    change.slots.push_back(slot.name);
  }
  if (names.empty()) return;
  change.op = isNew ? ObjectChange::Op::kAdd : ObjectChange::Op::kRemove;
  change.subject = "slot";
  change.label = fmt::format("{}", fmt::join(names, ", "));
  change.facts = {{"", {}, {}, isNew ? "added" : "removed"}};
  changes.push_back(std::move(change));
}

}  // namespace

std::vector<ObjectChange> ChangedSlots(const MachineState& before, const MachineState& after,
                                       const MachinePairs& pairs, const DiffScope& scope,
                                       UnknownFacts& unknown) {
  std::vector<ObjectChange> changes;
  AddAlone({before.model, pairs.slots.toAfter, after.model, DiffSideName::kAfter}, unknown,
           changes);
  AddAlone({after.model, pairs.slots.toBefore, before.model, DiffSideName::kBefore}, unknown,
           changes);
  const SlotComparison comparison(before, after, pairs, scope, unknown);
  for (std::size_t i = 0; i < after.model.slots.size(); ++i) {
    if (!pairs.slots.toBefore[i]) continue;
    if (auto change = comparison.Compare(*pairs.slots.toBefore[i], i)) {
      changes.push_back(*std::move(change));
    }
  }
  return changes;
}

}  // namespace pciinfo
