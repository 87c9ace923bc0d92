// SPDX-License-Identifier: Apache-2.0
#include "host/diff/diff.h"

#include "host/diff/change_list.h"
#include "host/diff/diff_functions.h"
#include "host/diff/diff_items.h"
#include "host/diff/diff_names.h"
#include "host/diff/diff_slots.h"

namespace pciinfo {
namespace {

bool Covers(const DiffInput& input, const vtq::Class& cimClass) {
  return input.hasAllClasses || !cimClass.GetInstances().empty();
}

ComparedClasses SortClasses(const DiffInput& before, const DiffInput& after, DiffResult& result) {
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

}  // namespace

const std::vector<std::string>& DerivedProperties() {
  static const std::vector<std::string> names = {kCardProperty, kSlotProperty, kFunctionsProperty,
                                                 kLinkWidthProperty, kLinkSpeedProperty};
  return names;
}

DiffResult Compare(const DiffInput& before, const DiffInput& after,
                   const std::set<std::string>& ignored) {
  const vtq::Namespace& old = *before.repository;
  const vtq::Namespace& now = *after.repository;
  DiffResult result;
  const ComparedClasses classes = SortClasses(before, after, result);
  ChangeList changes(ignored);
  SlotNames oldSlots;
  SlotNames newSlots;
  CompareSlots(old, now, classes, changes, oldSlots, newSlots);
  CompareFunctions(old, now, classes, oldSlots, newSlots, changes);
  const auto compareOthers = [&](const char* name, const char* key, const char* subject) {
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
  result.changes = changes.Take();
  return result;
}

}  // namespace pciinfo
