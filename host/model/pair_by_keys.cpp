// SPDX-License-Identifier: Apache-2.0
#include "host/model/pair_by_keys.h"

#include <unordered_map>

namespace pciinfo {
namespace {

using Partners = std::vector<std::optional<std::size_t>>;

void PairByKey(const std::vector<PairingKeys>& before, const std::vector<PairingKeys>& after,
               std::size_t level, Partners& partners, std::vector<bool>& isTaken) {
  std::unordered_map<std::string, std::vector<std::size_t>> free;
  for (std::size_t i = before.size(); i-- > 0;) {
    if (!isTaken[i] && !before[i][level].empty()) free[before[i][level]].push_back(i);
  }
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (partners[i] || after[i][level].empty()) continue;
    const auto found = free.find(after[i][level]);
    if (found == free.end() || found->second.empty()) continue;
    partners[i] = found->second.back();
    isTaken[found->second.back()] = true;
    found->second.pop_back();
  }
}

}  // namespace

Partners PairByKeys(const std::vector<PairingKeys>& before, const std::vector<PairingKeys>& after) {
  Partners partners(after.size());
  std::vector<bool> isTaken(before.size(), false);
  const std::size_t levels = before.empty() || after.empty() ? 0 : after.front().size();
  for (std::size_t level = 0; level < levels; ++level) {
    PairByKey(before, after, level, partners, isTaken);
  }
  return partners;
}

}  // namespace pciinfo
