// SPDX-License-Identifier: Apache-2.0
#include "host/diff/fact_list.h"

#include <fmt/format.h>

namespace pciinfo {
namespace {

std::string HowMany(const Fact& fact, std::size_t count, const std::string& unit) {
  if (unit.empty()) return fact.words;
  std::string units = fmt::format("{} {}{}", count, unit, count == 1 ? "" : "s");
  if (fact.property.empty()) return units;
  if (fact.words.empty()) return fmt::format("{} ({})", units, fact.property);
  return fmt::format("{} of {}", fact.words, units);
}

}  // namespace

void UnknownFacts::Add(DiffSideName side, const Fact& fact, const std::string& unit) {
  if (ignored_.contains(fact.property)) return;
  Row& row = rows_.try_emplace({side, fact.property}, Row{fact, unit, 0}).first->second;
  ++row.count;
  if (row.fact.unknownBecause.empty()) row.fact.unknownBecause = fact.unknownBecause;
}

std::vector<NotCompared> UnknownFacts::GetList() const {
  std::vector<NotCompared> list;
  list.reserve(rows_.size());
  for (const auto& [key, row] : rows_) {
    list.push_back(
        {key.first, key.second, HowMany(row.fact, row.count, row.unit), row.fact.unknownBecause});
  }
  return list;
}

std::vector<FactChange> CompareFacts(const std::vector<Fact>& before,
                                     const std::vector<Fact>& after, const std::string& unit,
                                     UnknownFacts& unknown) {
  std::vector<FactChange> changes;
  for (std::size_t i = 0; i < after.size(); ++i) {
    const Fact& old = before[i];
    const Fact& now = after[i];
    if (old.text == now.text) continue;
    if (!old.text) {
      unknown.Add(DiffSideName::kBefore, old, unit);
    } else if (!now.text) {
      unknown.Add(DiffSideName::kAfter, now, unit);
    } else {
      changes.push_back({now.property, old.text, now.text,
                         fmt::format("{} {} -> {}", now.words, *old.text, *now.text)});
    }
  }
  return changes;
}

}  // namespace pciinfo
