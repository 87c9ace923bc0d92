// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/instance_diff/instance_diff.h"
#include "host/model/link_status.h"
#include "host/model/pci_function.h"
#include "runtime/repository.h"

namespace pciinfo {

/// An instance to compare.
struct DiffItem {
  std::shared_ptr<vtq::Class> cimClass;
  std::shared_ptr<vtq::Instance> instance;
  std::string label;  ///< printable
  /// Keys to pair it by, from the most to the least reliable; empty keys are not used.
  std::vector<std::string> keys;
  // For functions only.
  PciFunction function;
  std::set<std::string> slots;  ///< paths of the slots that hold it
  bool isOnBoard = false;
  std::optional<LinkStatus> link;
  // For slots only.
  std::vector<std::string> functions;  ///< paths of the functions in it
};

using DiffItems = std::vector<DiffItem>;

/// Two items that correspond; one is null if only one inventory has the item.
struct DiffPair {
  const DiffItem* before = nullptr;
  const DiffItem* after = nullptr;
};

/// Pairs items that have the same first key, then those of the rest that have the same second key,
/// and so on. All items must have the same number of keys. Returns first the items that only
/// `before` has, then the pairs in the order of `after`.
std::vector<DiffPair> PairItems(const DiffItems& before, const DiffItems& after);

/// Returns the slots of a repository; their labels contain designation and tag.
DiffItems SlotItems(const vtq::Namespace& repository);

/// Returns the functions of the given classes, sorted by address. `slotNames` maps the path of a
/// slot to a name that is the same in both inventories; other slots are identified by their path.
DiffItems FunctionItems(const vtq::Namespace& repository, const std::set<std::string>& classes,
                        const std::map<std::string, std::string>& slotNames);

/// Returns the instances of a class, identified by one key property; by their path if `key` is
/// empty.
DiffItems ItemsOf(const vtq::Namespace& repository, const std::string& className,
                  const std::string& key);

/// Returns associations whose function is not published, identified by their path.
DiffItems DanglingItems(const vtq::Namespace& repository, const std::string& className,
                        const std::set<std::string>& functionClasses);

}  // namespace pciinfo
