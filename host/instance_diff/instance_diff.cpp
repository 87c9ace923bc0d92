// SPDX-License-Identifier: Apache-2.0
#include "host/instance_diff/instance_diff.h"

#include <algorithm>
#include <iterator>

#include "host/instance_diff/change_list.h"
#include "host/instance_diff/diff_functions.h"
#include "host/instance_diff/diff_items.h"
#include "host/instance_diff/diff_names.h"
#include "host/instance_diff/diff_slots.h"

namespace pciinfo {
namespace {

bool Covers(const InstanceDiffInput& input, const vtq::Class& cimClass) {
  return input.hasAllClasses || !cimClass.GetInstances().empty();
}

ComparedClasses SortClasses(const InstanceDiffInput& before, const InstanceDiffInput& after,
                            InstanceDiff& result) {
  ComparedClasses classes;
  for (const auto& cimClass : before.repository->GetClasses()) {
    const std::string& name = cimClass->GetSchema().name;
    const vtq::Class& other = *after.repository->Find(name);
    const bool isInOld = Covers(before, *cimClass);
    const bool isInNew = Covers(after, other);
    if (isInOld && isInNew) classes.compared.insert(name);
    if (isInOld == isInNew) classes.comparable.insert(name);
    if (isInOld && !isInNew && !cimClass->GetInstances().empty()) result.onlyOld.push_back(name);
    if (!isInOld && isInNew && !other.GetInstances().empty()) result.onlyNew.push_back(name);
  }
  result.hasCompared = !classes.compared.empty();
  return classes;
}

/// Whether the instances of a class are paired by more than their path.
bool HasOwnComparison(const std::string& name) {
  constexpr const char* kClasses[] = {
      "QZMSG_PCIDevice",  "QZMSG_PCIBridge",    "QZMSG_SystemSlot",   "QZMSG_SystemBoard",
      "QZMSG_PCIRawData", "QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"};
  return std::find(std::begin(kClasses), std::end(kClasses), name) != std::end(kClasses);
}

}  // namespace

const std::vector<std::string>& DerivedProperties() {
  static const std::vector<std::string> names = {kCardProperty, kSlotProperty, kFunctionsProperty,
                                                 kLinkWidthProperty, kLinkSpeedProperty};
  return names;
}

InstanceDiff CompareInstances(const InstanceDiffInput& before, const InstanceDiffInput& after,
                              const std::set<std::string>& ignored) {
  const vtq::Namespace& old = *before.repository;
  const vtq::Namespace& now = *after.repository;
  InstanceDiff result;
  const ComparedClasses classes = SortClasses(before, after, result);
  ChangeList changes(ignored);
  SlotNames oldSlots;
  SlotNames newSlots;
  CompareSlots(old, now, classes, changes, oldSlots, newSlots);
  CompareFunctions(old, now, classes, oldSlots, newSlots, changes);
  const auto compareOthers = [&](const std::string& name, const char* key, const char* subject) {
    if (!classes.Has(name)) return;
    changes.ComparePairs(ItemsOf(old, name, key), ItemsOf(now, name, key), subject);
  };
  compareOthers("QZMSG_SystemBoard", "DeviceID", "board");
  compareOthers("QZMSG_PCIRawData", "Command", "listing");
  for (const char* name : {"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"}) {
    if (!classes.Has(name)) continue;
    changes.ComparePairs(DanglingItems(old, name, classes.comparable),
                         DanglingItems(now, name, classes.comparable), "association");
  }
  for (const std::string& name : classes.compared) {
    if (!HasOwnComparison(name)) compareOthers(name, "", "instance");
  }
  result.changes = changes.Take();
  return result;
}

}  // namespace pciinfo
