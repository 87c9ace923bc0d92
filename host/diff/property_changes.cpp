// SPDX-License-Identifier: Apache-2.0
#include "host/diff/property_changes.h"

#include "host/instance_diff/diff_words.h"

namespace pciinfo {

std::vector<FactChange> CompareAllProperties(const NamedProperties& before,
                                             const NamedProperties& after,
                                             const std::set<std::string>& without) {
  std::vector<FactChange> changes;
  for (const std::string& name : after.Names()) {
    if (without.contains(name)) continue;
    const auto old = before.ValueOf(name);
    const auto now = after.ValueOf(name);
    if (old.IsNull() || now.IsNull() || old == now) continue;
    changes.push_back({name, before.TextOf(name), after.TextOf(name), ChangeText(name, old, now)});
  }
  return changes;
}

}  // namespace pciinfo
