// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/check/class_facts.h"

namespace pciinfo {

// A damaged table can hold tens of thousands of slots, and a list as many functions: what the
// checks look up for each of them they find here, without a walk through all others.

/// Finds published functions by address. The facts must outlive it and must not change.
class PublishedIndex final {
 public:
  explicit PublishedIndex(const ClassFacts& facts) {
    for (const PublishedFunction& published : facts.published) {
      if (published.function.address) byAddress_.emplace(*published.function.address, &published);
    }
  }

  /// Returns null if no function is published at the address.
  const PublishedFunction* Find(const PciAddress& address) const {
    const auto found = byAddress_.find(address);
    return found == byAddress_.end() ? nullptr : found->second;
  }
  /// Returns the path of the instance; empty if no function is published at the address.
  std::string PathOf(const PciAddress& address) const {
    const PublishedFunction* published = Find(address);
    return published == nullptr ? "" : published->function.path;
  }

 private:
  std::map<PciAddress, const PublishedFunction*> byAddress_;
};

/// Finds the functions that the kernel knows. The facts must outlive it and must not change.
class KernelIndex final {
 public:
  explicit KernelIndex(const ClassFacts& facts) : facts_(facts) {
    listed_.reserve(ListOf(facts).size());
    for (const ListedFunction& line : ListOf(facts)) listed_.push_back(line.address);
    std::sort(listed_.begin(), listed_.end());
  }

  /// Whether the kernel's list names the address.
  bool IsListed(const PciAddress& address) const {
    return std::binary_search(listed_.begin(), listed_.end(), address);
  }
  /// Whether the list or the directories have a function at the address in domain 0.
  bool IsKnown(const PciAddress& address) const {
    return IsListed(address) || facts_.functions.count({0, address}) != 0;
  }

 private:
  const ClassFacts& facts_;
  std::vector<PciAddress> listed_;  ///< sorted
};

/// Finds the first published slot with a tag. The facts must outlive it and must not change.
class SlotIndex final {
 public:
  explicit SlotIndex(const ClassFacts& facts) {
    byTag_.reserve(facts.slots.slots.size());
    for (const Slot& slot : facts.slots.slots) byTag_.emplace(slot.tag, &slot);
  }

  /// Returns the path of the instance; empty if no slot with the tag is published.
  std::string PathOf(const std::string& tag) const {
    const auto found = byTag_.find(tag);
    return found == byTag_.end() ? "" : found->second->path;
  }

 private:
  std::unordered_map<std::string_view, const Slot*> byTag_;
};

}  // namespace pciinfo
