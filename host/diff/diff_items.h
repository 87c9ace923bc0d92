#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/diff/diff.h"
#include "host/model/link_status.h"
#include "host/model/pci_function.h"
#include "runtime/repository.h"

namespace pciinfo {

/// An instance that is compared.
struct DiffItem {
  std::shared_ptr<vtq::Class> cimClass;
  std::shared_ptr<vtq::Instance> instance;
  std::string label;  ///< printable
  /// What it may be known by, from the surest to the weakest; an empty one is none.
  std::vector<std::string> keys;
  // Of functions.
  PciFunction function;
  std::set<std::string> slots;  ///< paths of the slots that it sits in
  bool isOnBoard = false;
  std::optional<LinkStatus> link;
  // Of slots.
  std::vector<std::string> functions;  ///< paths of the functions in it
};

using DiffItems = std::vector<DiffItem>;

/// Two items that are the same thing; one of them is null where only one inventory has it.
struct DiffPair {
  const DiffItem* before = nullptr;
  const DiffItem* after = nullptr;
};

/// Pairs items key by key: two that share the first key, of the rest two that share the second one,
/// and so on. All items must have the same number of keys. The pairs of items in the order of
/// `after`, with the items that only `before` has first.
std::vector<DiffPair> PairItems(const DiffItems& before, const DiffItems& after);

/// The slots of a repository, by tag; their labels name designation and tag.
DiffItems SlotItems(const vtq::Namespace& repository);

/// The functions of some classes, by address. `slotNames` gives a slot, by path, a name that it has
/// in both inventories; a slot without one is known by its path.
DiffItems FunctionItems(const vtq::Namespace& repository, const std::set<std::string>& classes,
                        const std::map<std::string, std::string>& slotNames);

/// The instances of a class, known by one key property.
DiffItems ItemsOf(const vtq::Namespace& repository, const std::string& className,
                  const std::string& key);

/// Associations whose function is not published, known by what they join.
DiffItems DanglingItems(const vtq::Namespace& repository, const std::string& className,
                        const std::set<std::string>& functionClasses);

}  // namespace pciinfo
