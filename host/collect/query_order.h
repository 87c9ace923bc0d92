// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "runtime/class_schema.h"

namespace pciinfo {

/// What to collect and what to print for a query, by class name, each class once.
struct QueryPlan {
  /// Every association comes after the classes that it joins, because a plug-in makes associations
  /// from instances that the repository already has.
  std::vector<std::string> collect;
  /// The requested classes, in the requested order; all of them are in `collect`.
  std::vector<std::string> print;
};

/// Returns the plan for the classes in `asked`, named in any case; an empty `asked` means all
/// declared classes. Throws UsageError, which lists the declared classes, when a class is not
/// declared.
QueryPlan PlanQuery(const std::vector<vtq::ClassSchema>& declared,
                    const std::vector<std::string>& asked);

}  // namespace pciinfo
