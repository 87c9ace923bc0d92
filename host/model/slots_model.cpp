// SPDX-License-Identifier: Apache-2.0
#include "host/model/slots_model.h"

#include <map>

#include "host/formats/value_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMReference;

TCIMReference ReferenceOf(const vtq::Instance& instance, const std::string& property) {
  return instance.GetProperty(property, {}).value.GetReference();
}

/// The function that a reference names. If the repository lacks it, only the path is set.
PciFunction Resolve(const vtq::Namespace& repository, const TCIMReference& reference) {
  const std::shared_ptr<vtq::Class> cimClass = repository.Find(reference.GetClassName());
  const auto instance = cimClass ? cimClass->Find(reference.ToString()) : nullptr;
  if (instance != nullptr) return ReadFunction(*cimClass, *instance);
  PciFunction unknown;
  unknown.path = reference.ToString();
  unknown.location = unknown.path;
  return unknown;
}

std::optional<std::string> DesignationOf(const vtq::Instance& instance) {
  const NQZMVTQ20::TCIMValue value = instance.GetProperty("SlotDesignation", {}).value;
  if (value.IsNull()) return std::nullopt;
  return std::string(value.GetString());
}

Slot ReadSlot(const vtq::Instance& instance) {
  Slot slot;
  slot.path = instance.GetPath();
  slot.tag = TextOf(instance, "Tag");
  slot.designation = DesignationOf(instance);
  slot.type = NumberOf(instance, "ConnectorType");
  slot.usage = NumberOf(instance, "CurrentUsage");
  slot.width = NumberOf(instance, "MaxDataWidth");
  slot.id = NumberOf(instance, "Number");
  slot.hotPlug = BooleanOf(instance, "SupportsHotPlug");
  return slot;
}

/// The functions of an association, by the path of the slot or board that it joins them to.
std::map<std::string, std::vector<PciFunction>> ReadAssociation(const vtq::Namespace& repository,
                                                                const std::string& association) {
  std::map<std::string, std::vector<PciFunction>> functions;
  for (const auto& instance : repository.Find(association)->GetInstances()) {
    functions[ReferenceOf(*instance, "Antecedent").ToString()].push_back(
        Resolve(repository, ReferenceOf(*instance, "Dependent")));
  }
  return functions;
}

}  // namespace

SlotsModel ReadSlots(const vtq::Namespace& repository) {
  SlotsModel model;
  auto bySlot = ReadAssociation(repository, "QZMSG_DeviceInSlot");
  for (const auto& instance : repository.Find("QZMSG_SystemSlot")->GetInstances()) {
    Slot slot = ReadSlot(*instance);
    slot.functions = std::move(bySlot[slot.path]);
    SortByAddress(slot.functions);
    model.slots.push_back(std::move(slot));
  }
  for (auto& [board, functions] : ReadAssociation(repository, "QZMSG_OnBoardDevice")) {
    model.onBoard.insert(model.onBoard.end(), functions.begin(), functions.end());
  }
  SortByAddress(model.onBoard);
  return model;
}

}  // namespace pciinfo
