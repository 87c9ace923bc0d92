// SPDX-License-Identifier: Apache-2.0
#include <set>

#include "host/model/filter.h"

namespace pciinfo {
namespace {

/// The paths of the matching functions and slots.
using Paths = std::set<std::string>;

/// Returns whether any of the functions matches.
bool AddKept(Paths& kept, const std::vector<PciFunction>& functions, const Slot* slot,
             const Filter& filter) {
  bool any = false;
  for (const PciFunction& function : functions) {
    if (!filter.Keeps(function, slot)) continue;
    kept.insert(function.path);
    any = true;
  }
  return any;
}

Paths KeptPaths(const vtq::Namespace& repository, const Filter& filter) {
  const SlotsModel model = ReadSlots(repository);
  Paths kept;
  Paths inSlots;
  for (const Slot& slot : model.slots) {
    for (const PciFunction& function : slot.functions) inSlots.insert(function.path);
    if (AddKept(kept, slot.functions, &slot, filter) || filter.Keeps(slot)) kept.insert(slot.path);
  }
  std::vector<PciFunction> others = ReadFunctions(repository);
  others.insert(others.end(), model.onBoard.begin(), model.onBoard.end());
  std::erase_if(others,
                [&](const PciFunction& function) { return inSlots.contains(function.path); });
  AddKept(kept, others, nullptr, filter);
  return kept;
}

/// Returns the path that decides whether an instance is kept: for an association, its function's.
std::string DecidingPath(const vtq::ClassSchema& schema, const vtq::Instance& instance) {
  for (std::size_t i = 0; i < schema.properties.size(); ++i) {
    if (schema.properties[i].name == "Dependent") {
      return static_cast<std::string>(instance.GetValue(i));
    }
  }
  return instance.GetPath();
}

}  // namespace

std::shared_ptr<vtq::Namespace> KeptOf(const vtq::Namespace& repository, const Filter& filter) {
  const Paths kept = KeptPaths(repository, filter);
  std::shared_ptr<vtq::Namespace> result = vtq::Namespace::Create(repository.GetName({}));
  for (const auto& cimClass : repository.GetClasses()) {
    const vtq::ClassSchema& schema = cimClass->GetSchema();
    result->Declare(schema);
    const auto target = result->Find(schema.name);
    for (const auto& instance : cimClass->GetInstances()) {
      if (kept.contains(DecidingPath(schema, *instance))) target->Commit(instance);
    }
  }
  return result;
}

}  // namespace pciinfo
