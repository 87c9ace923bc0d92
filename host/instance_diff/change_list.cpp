// SPDX-License-Identifier: Apache-2.0
#include "host/instance_diff/change_list.h"

#include <utility>

#include "host/instance_diff/diff_names.h"
#include "host/instance_diff/diff_words.h"

namespace pciinfo {

using NQZMVTQ20::TCIMValue;

namespace {

std::set<std::string> PropertiesOf(const DiffPair& pair) {
  std::set<std::string> names;
  for (const DiffItem* item : {pair.before, pair.after}) {
    for (const auto& property : item->cimClass->GetSchema().properties) names.insert(property.name);
  }
  return names;
}

/// Whether a property is a "DeviceID" that only repeats "Location".
bool RepeatsLocation(const DiffPair& pair, const std::string& name) {
  return name == "DeviceID" && ValueOf(*pair.before, name) == ValueOf(*pair.before, "Location") &&
         ValueOf(*pair.after, name) == ValueOf(*pair.after, "Location");
}

bool IsOfSystem(const std::string& name) {
  return name == "SystemName" || name == "SystemCreationClassName";
}

InstanceChange ChangeOf(const DiffPair& pair, const std::string& subject) {
  InstanceChange change;
  change.subject = subject;
  for (const DiffItem* item : {pair.before, pair.after}) {
    if (item != nullptr) change.label = item->label;  // the new label if there are both
  }
  if (subject == "system") change.label = subject;
  if (pair.before != nullptr) change.from = pair.before->instance;
  if (pair.after != nullptr) change.to = pair.after->instance;
  return change;
}

}  // namespace

TCIMValue ValueOf(const DiffItem& item, const std::string& name) {
  const auto& properties = item.cimClass->GetSchema().properties;
  for (std::size_t i = 0; i < properties.size(); ++i) {
    if (properties[i].name == name) return item.instance->GetValue(i);
  }
  return {};
}

TCIMValue TextsValue(const std::vector<std::string>& texts) {
  TCIMValue::TArray elements;
  for (const std::string& text : texts) elements.emplace_back(text);
  const auto count = static_cast<std::uint32_t>(elements.size());
  return TCIMValue(TCIMValue::TCIMType(TCIMValue::TCIMType::kString), count, std::move(elements));
}

void ChangeList::Add(InstanceChange change) {
  if (ignored_.count(change.property) == 0) changes_.push_back(std::move(change));
}

void ChangeList::AddWholeInstance(const DiffPair& pair, const std::string& subject,
                                  const std::string& where) {
  InstanceChange change = ChangeOf(pair, subject);
  change.op = pair.before == nullptr ? InstanceChange::Op::kAdd : InstanceChange::Op::kRemove;
  change.text = (pair.before == nullptr ? "added" : "removed") + where;
  Add(std::move(change));
}

void ChangeList::AddValue(const DiffPair& pair, const std::string& subject,
                          const std::string& property, TCIMValue before, TCIMValue after,
                          const std::string& text) {
  InstanceChange change = ChangeOf(pair, subject);
  change.op = property == kSlotProperty ? InstanceChange::Op::kMove : InstanceChange::Op::kReplace;
  change.property = property;
  change.oldValue = std::move(before);
  change.newValue = std::move(after);
  change.text = text;
  Add(std::move(change));
}

void ChangeList::CompareProperties(const DiffPair& pair, const std::string& subject) {
  for (const std::string& name : PropertiesOf(pair)) {
    const TCIMValue before = ValueOf(*pair.before, name);
    const TCIMValue after = ValueOf(*pair.after, name);
    if (before == after || RepeatsLocation(pair, name)) continue;
    const std::string text = ChangeText(name, before, after);
    if (!IsOfSystem(name)) {
      AddValue(pair, subject, name, before, after, text);
    } else if (reportedSystemChanges_.insert(text).second) {
      // Only once, because all instances of a system have the same name and class.
      AddValue(pair, "system", name, before, after, text);
    }
  }
}

void ChangeList::ComparePairs(const DiffItems& before, const DiffItems& after,
                              const std::string& subject) {
  for (const DiffPair& pair : PairItems(before, after)) {
    if (pair.before == nullptr || pair.after == nullptr) {
      AddWholeInstance(pair, subject);
    } else {
      CompareProperties(pair, subject);
    }
  }
}

}  // namespace pciinfo
