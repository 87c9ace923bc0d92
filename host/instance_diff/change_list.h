// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/instance_diff/diff_items.h"
#include "host/instance_diff/instance_diff.h"

namespace pciinfo {

/// Returns the value of a property; null if the class does not declare it.
NQZMVTQ20::TCIMValue ValueOf(const DiffItem& item, const std::string& name);

/// Returns an array of strings.
NQZMVTQ20::TCIMValue TextsValue(const std::vector<std::string>& texts);

/// Collects the changes that a comparison finds.
class ChangeList final {
 public:
  /// Changes of the properties in `ignored`, which must outlive the list, are left out.
  explicit ChangeList(const std::set<std::string>& ignored) : ignored_(ignored) {}

  /// Adds an instance that only one inventory has; `where` is appended to the text.
  void AddWholeInstance(const DiffPair& pair, const std::string& subject,
                        const std::string& where = "");

  /// Adds another value of a property of an instance that both inventories have.
  void AddValue(const DiffPair& pair, const std::string& subject, const std::string& property,
                NQZMVTQ20::TCIMValue before, NQZMVTQ20::TCIMValue after, const std::string& text);

  /// Adds every declared property that differs.
  void CompareProperties(const DiffPair& pair, const std::string& subject);

  /// Pairs the items and adds whatever differs.
  void ComparePairs(const DiffItems& before, const DiffItems& after, const std::string& subject);

  std::vector<InstanceChange> Take() { return std::move(changes_); }

 private:
  void Add(InstanceChange change);

  const std::set<std::string>& ignored_;
  std::vector<InstanceChange> changes_;
  std::set<std::string> reportedSystemChanges_;
};

}  // namespace pciinfo
