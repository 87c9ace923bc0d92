// SPDX-License-Identifier: Apache-2.0
#include "host/diff/changed_functions.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "host/diff/diff_places.h"
#include "host/diff/function_labels.h"
#include "host/diff/port_path.h"
#include "host/machine/names.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

using BusNumber = std::pair<unsigned, unsigned>;  // with the domain first

std::string BusText(const BusNumber& bus) {
  return fmt::format("{:04x}:{:02x}", bus.first, bus.second);
}

BusNumber BusOf(const MachineFunction& function) {
  return {function.address.domain, function.address.address.bus};
}

/// The buses that have other numbers, with the functions on them.
class RenumberedBuses final {
 public:
  void Add(const MachineFunction& old, const MachineFunction& now) {
    if (BusOf(old) != BusOf(now)) ++buses_[{BusOf(old), BusOf(now)}];
  }

  void AppendTo(std::vector<ObjectChange>& changes) const {
    if (buses_.empty()) return;
    ObjectChange change;
    change.subject = "buses";
    for (const auto& [numbers, count] : buses_) {
      const std::string before = BusText(numbers.first);
      const std::string after = BusText(numbers.second);
      change.facts.push_back({"Bus", before, after,
                              fmt::format("bus {} is now {} ({})", before, after,
                                          Count(count, "function", "functions"))});
    }
    changes.push_back(std::move(change));
  }

 private:
  std::map<std::pair<BusNumber, BusNumber>, std::size_t> buses_;
};

/// Functions with the same changes.
struct FunctionGroup {
  FunctionList before;
  FunctionList after;
  std::vector<FactChange> facts;
};

std::string TextsOf(const std::vector<FactChange>& facts) {
  std::string texts;
  for (const FactChange& fact : facts) texts += fact.property + ' ' + fact.text + '\n';
  return texts;
}

class FunctionGroups final {
 public:
  void Add(const MachineFunction& old, const MachineFunction& now, std::vector<FactChange> facts) {
    const auto [place, isNew] = places_.try_emplace(TextsOf(facts), groups_.size());
    if (isNew) groups_.push_back({{}, {}, std::move(facts)});
    groups_[place->second].before.push_back(&old);
    groups_[place->second].after.push_back(&now);
  }

  const std::vector<FunctionGroup>& Get() const { return groups_; }

 private:
  std::vector<FunctionGroup> groups_;
  std::map<std::string, std::size_t> places_;  ///< in the groups, by their changes
};

std::vector<DomainAddress> AddressesOf(const FunctionList& functions) {
  std::vector<DomainAddress> addresses;
  addresses.reserve(functions.size());
  for (const MachineFunction* function : functions) addresses.push_back(function->address);
  std::sort(addresses.begin(), addresses.end());
  return addresses;
}

ObjectChange ObjectOf(const FunctionGroup& group, const MachineModel& after) {
  ObjectChange change;
  change.subject = "function";
  change.label = CardsLabel(group.after, after);
  change.functions = AddressesOf(group.after);
  change.formerFunctions = AddressesOf(group.before);
  if (change.formerFunctions == change.functions) change.formerFunctions.clear();
  change.facts = group.facts;
  return change;
}

FactChange OtherCard(const MachineFunction& old, const MachineFunction& now) {
  return {"Card", IdText(old), IdText(now),
          fmt::format("replaced: {} [{}] -> {} [{}]", ModelText(old), IdText(old), ModelText(now),
                      IdText(now))};
}

FactChange OtherAddress(const MachineFunction& old, const MachineFunction& now) {
  const std::string before = FormatAddress(old.address);
  const std::string after = FormatAddress(now.address);
  return {"Address", before, after, fmt::format("address {} -> {}", before, after)};
}

/// Compares pairs of functions, and notes buses that only have other numbers.
class PairComparison final {
 public:
  PairComparison(const MachineState& before, const MachineState& after, const MachinePairs& pairs,
                 const DiffScope& scope, UnknownFacts& unknown)
      : scope_(scope), unknown_(unknown), places_(before, after, pairs, unknown) {}

  void Compare(const StateFunction& old, const StateFunction& now) {
    std::vector<FactChange> facts;
    if (AreOfOneModel(old.Get(), now.Get())) {
      facts = CompareFunction(old, now, scope_.all, unknown_);
    } else {
      facts.push_back(OtherCard(old.Get(), now.Get()));
    }
    CompareAddress(old, now, facts);
    std::erase_if(facts,
                  [this](const auto& fact) { return scope_.ignored.contains(fact.property); });
    if (!facts.empty()) groups_.Add(old.Get(), now.Get(), std::move(facts));
  }

  std::vector<ObjectChange> Take(const MachineModel& after) {
    std::vector<ObjectChange> changes;
    if (!scope_.ignored.contains("Bus")) buses_.AppendTo(changes);
    for (const FunctionGroup& group : groups_.Get()) changes.push_back(ObjectOf(group, after));
    return changes;
  }

 private:
  void CompareAddress(const StateFunction& old, const StateFunction& now,
                      std::vector<FactChange>& facts) {
    if (auto place = places_.Compare(old, now)) {
      facts.insert(facts.begin(), *std::move(place));
    } else if (NumberOnBus(old.Get().address.address) == NumberOnBus(now.Get().address.address)) {
      buses_.Add(old.Get(), now.Get());
    } else {
      facts.push_back(OtherAddress(old.Get(), now.Get()));
    }
  }

  const DiffScope& scope_;
  UnknownFacts& unknown_;
  PlaceComparison places_;
  RenumberedBuses buses_;
  FunctionGroups groups_;
};

}  // namespace

std::vector<ObjectChange> ChangedFunctions(const MachineState& before, const MachineState& after,
                                           const MachinePairs& pairs, const DiffScope& scope,
                                           UnknownFacts& unknown) {
  PairComparison comparison(before, after, pairs, scope, unknown);
  for (std::size_t i = 0; i < after.model.functions.size(); ++i) {
    const auto partner = pairs.functions.toBefore[i];
    if (partner) comparison.Compare({before, *partner}, {after, i});
  }
  return comparison.Take(after.model);
}

}  // namespace pciinfo
