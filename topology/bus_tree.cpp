// SPDX-License-Identifier: Apache-2.0
#include "topology/bus_tree.h"

#include <algorithm>

namespace topology {
namespace {

bool IsBefore(const Function& function, const Address& address) {
  return function.address < address;
}

}  // namespace

BusTree::BusTree(const std::vector<Function>& functions)
    : functions_(functions), parents_(functions.size()), children_(functions.size()) {
  for (std::size_t i = 0; i < functions.size(); ++i) {
    const auto& bridge = functions[i].config.bridge;
    // A bridge that the firmware did not set up holds zeros.
    if (!bridge || bridge->secondary <= functions[i].address.bus) continue;
    bridgeTo_.emplace(BusKey(functions[i].address.domain, bridge->secondary), i);
  }
  for (std::size_t i = 0; i < functions.size(); ++i) {
    parents_[i] = FindParent(functions[i].address);
    (parents_[i] ? children_[*parents_[i]] : roots_).push_back(i);
  }
}

std::optional<std::size_t> BusTree::FindParent(const Address& address) const {
  // Ranges nest, so the nearest bridge at or before the bus, or one that leads to that bridge,
  // holds it.
  auto next = bridgeTo_.upper_bound(BusKey(address.domain, address.bus));
  while (next != bridgeTo_.begin()) {
    --next;
    const Function& bridge = functions_[next->second];
    if (bridge.address.domain != address.domain) break;
    if (bridge.config.bridge->subordinate >= address.bus) return next->second;
    // Of the bridges before, only those that lead to this one can reach further.
    next = bridgeTo_.upper_bound(BusKey(address.domain, bridge.address.bus));
  }
  return std::nullopt;
}

std::optional<std::size_t> BusTree::Find(const Address& address) const {
  const auto at = std::lower_bound(functions_.begin(), functions_.end(), address, IsBefore);
  if (at == functions_.end() || at->address != address) return std::nullopt;
  return static_cast<std::size_t>(at - functions_.begin());
}

std::pair<std::size_t, std::size_t> BusTree::FindDevice(const Address& address) const {
  Address first = address;
  first.function = 0;
  auto at = std::lower_bound(functions_.begin(), functions_.end(), first, IsBefore);
  const auto begin = static_cast<std::size_t>(at - functions_.begin());
  while (at != functions_.end() && IsSameDevice(at->address, address)) ++at;
  return {begin, static_cast<std::size_t>(at - functions_.begin())};
}

std::pair<std::size_t, std::size_t> BusTree::FindBus(std::uint32_t domain, std::uint8_t bus) const {
  const auto begin = functions_.begin();
  const auto first =
      std::lower_bound(begin, functions_.end(), Address{domain, bus, 0, 0}, IsBefore);
  const auto last = std::partition_point(first, functions_.end(), [&](const Function& function) {
    return BusKey(function.address.domain, function.address.bus) == BusKey(domain, bus);
  });
  return {static_cast<std::size_t>(first - begin), static_cast<std::size_t>(last - begin)};
}

std::optional<std::size_t> BusTree::FindBridgeTo(std::uint32_t domain, std::uint8_t bus) const {
  const auto found = bridgeTo_.find(BusKey(domain, bus));
  if (found == bridgeTo_.end()) return std::nullopt;
  return found->second;
}

bool BusTree::HasDomain(std::uint32_t domain) const {
  const auto at =
      std::lower_bound(functions_.begin(), functions_.end(), Address{domain, 0, 0, 0}, IsBefore);
  return at != functions_.end() && at->address.domain == domain;
}

}  // namespace topology
