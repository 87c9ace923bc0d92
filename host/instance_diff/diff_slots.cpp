// SPDX-License-Identifier: Apache-2.0
#include "host/instance_diff/diff_slots.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace pciinfo {
namespace {

void Name(const DiffItem* slot, const std::string& name, SlotNames& slots) {
  if (slot == nullptr) return;
  slots.names[slot->instance->GetPath()] = name;
  slots.labels[slot->instance->GetPath()] = slot->label;
}

/// The functions in a slot, in words.
std::string Addresses(const vtq::Namespace& repository, const DiffItem& slot) {
  std::vector<std::string> addresses;
  for (const char* name : {"QZMSG_PCIDevice", "QZMSG_PCIBridge"}) {
    const auto cimClass = repository.Find(name);
    for (const std::string& path : slot.functions) {
      const auto instance = cimClass->Find(path);
      if (instance != nullptr) addresses.push_back(AddressText(ReadFunction(*cimClass, *instance)));
    }
  }
  std::sort(addresses.begin(), addresses.end());
  return addresses.empty() ? "unpublished functions"
                           : fmt::format("{}", fmt::join(addresses, ", "));
}

void CompareContents(const vtq::Namespace& before, const vtq::Namespace& after,
                     const DiffPair& pair, ChangeList& changes) {
  const bool wasEmpty = pair.before->functions.empty();
  if (wasEmpty == pair.after->functions.empty()) return;
  const std::string text = wasEmpty
                               ? "now holds " + Addresses(after, *pair.after)
                               : fmt::format("now empty (was {})", Addresses(before, *pair.before));
  changes.AddValue(pair, "slot", kFunctionsProperty, TextsValue(pair.before->functions),
                   TextsValue(pair.after->functions), text);
}

}  // namespace

void CompareSlots(const vtq::Namespace& before, const vtq::Namespace& after,
                  const ComparedClasses& classes, ChangeList& changes, SlotNames& oldSlots,
                  SlotNames& newSlots) {
  if (!classes.Has("QZMSG_SystemSlot")) return;
  const DiffItems oldItems = SlotItems(before);
  const DiffItems newItems = SlotItems(after);
  int count = 0;
  for (const DiffPair& pair : PairItems(oldItems, newItems)) {
    const std::string name = std::to_string(++count);
    Name(pair.before, name, oldSlots);
    Name(pair.after, name, newSlots);
    if (pair.before == nullptr || pair.after == nullptr) {
      changes.AddWholeInstance(pair, "slot");
      continue;
    }
    if (classes.Has("QZMSG_DeviceInSlot")) CompareContents(before, after, pair, changes);
    changes.CompareProperties(pair, "slot");
  }
}

}  // namespace pciinfo
