#pragma once

#include <string>
#include <vector>

#include "runtime/class_schema.h"

namespace pciinfo {

/// What to collect and what to print for a query, by class name, each class once.
struct QueryPlan {
  /// In an order in which every association comes after the classes that it joins: associations are
  /// made from instances that are already there.
  std::vector<std::string> collect;
  /// The classes that were asked for, in the order asked for; a part of `collect`.
  std::vector<std::string> print;
};

/// The plan for a query of `asked` among the declared classes; nothing asked for means all of them.
/// Throws UsageError, which lists the declared classes, when a class is not among them.
QueryPlan PlanQuery(const std::vector<vtq::ClassSchema>& declared,
                    const std::vector<std::string>& asked);

}  // namespace pciinfo
