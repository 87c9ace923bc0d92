// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/diff/machine_diff.h"

namespace pciinfo {

/// A value that a side may know, in words.
struct Fact {
  std::string property;  ///< empty if the objects themselves are unknown
  std::string words;     ///< what the property is; empty if it stands for a group of the objects
  std::optional<std::string> text;
  std::string unknownBecause = {};
};

/// Counts what one side does not tell.
class UnknownFacts final {
 public:
  explicit UnknownFacts(const std::set<std::string>& ignored) : ignored_(ignored) {}

  /// `unit` is "function" or "slot"; empty for what a machine has once.
  void Add(DiffSideName side, const Fact& fact, const std::string& unit);
  std::vector<NotCompared> GetList() const;

 private:
  struct Row {
    Fact fact;
    std::string unit;
    std::size_t count = 0;
  };

  const std::set<std::string>& ignored_;
  std::map<std::pair<DiffSideName, std::string>, Row> rows_;
};

/// Returns the changes from the old facts to the new ones, which must be of the same properties in
/// the same order.
std::vector<FactChange> CompareFacts(const std::vector<Fact>& before,
                                     const std::vector<Fact>& after, const std::string& unit,
                                     UnknownFacts& unknown);

}  // namespace pciinfo
