// SPDX-License-Identifier: Apache-2.0
#include "tests/fakes/plugin_fixture.h"

#include "pci/process_state.h"
#include "tests/fakes/pci_schema.h"

using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::ICIMNamespace;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TInstanceCallback;
using NQZMVTQ20::TQualifierMap;

PluginTest::PluginTest() : nameSpace(vtq::Namespace::Create("root/cimv2")) {
  Fake() = {};
  processState = {};
  slotLocationVect.clear();
  slotBusCollectionVect.clear();
  tagCounter = 0;
  MachineTree::Clear();
  for (vtq::ClassSchema& schema : pciinfo::PciSchema()) nameSpace->Declare(std::move(schema));
}

std::shared_ptr<vtq::Class> PluginTest::Class(const std::string& name) const {
  return nameSpace->Find(name);
}

const std::vector<std::shared_ptr<vtq::Instance>>& PluginTest::Instances(
    const std::string& className) const {
  return Class(className)->GetInstances();
}

std::shared_ptr<ICIMInstance> PluginTest::Commit(const std::string& className,
                                                 const TPropertyMap& properties) {
  std::shared_ptr<ICIMInstance> instance = Class(className)->CreateInstance({});
  for (const auto& [name, value] : properties) instance->SetProperty(name, value, {});
  instance->Commit({});
  return instance;
}

std::string Text(const ICIMInstance& instance, const std::string& property) {
  return static_cast<std::string>(instance.GetProperty(property, {}).value);
}

unsigned Number(const ICIMInstance& instance, const std::string& property) {
  return static_cast<unsigned>(instance.GetProperty(property, {}).value);
}

std::string Text(const TPropertyMap& properties, const std::string& property) {
  return static_cast<std::string>(properties.at(property));
}

unsigned Number(const TPropertyMap& properties, const std::string& property) {
  return static_cast<unsigned>(properties.at(property));
}

std::vector<unsigned> Numbers(const TCIMValue& value) {
  std::vector<unsigned> numbers;
  for (const TCIMValue& element : value.GetArray())
    numbers.push_back(static_cast<unsigned>(element));
  return numbers;
}

std::vector<std::string> Texts(const TCIMValue& value) {
  std::vector<std::string> texts;
  for (const TCIMValue& element : value.GetArray()) texts.emplace_back(element.GetString());
  return texts;
}

std::string FaultyClass::GetName(const TQualifierMap& qualifiers) const {
  onGetName();
  return target_->GetName(qualifiers);
}

std::shared_ptr<ICIMNamespace> FaultyClass::GetNamespace(const TQualifierMap& qualifiers) const {
  onGetNamespace();
  return target_->GetNamespace(qualifiers);
}

std::shared_ptr<ICIMInstance> FaultyClass::CreateInstance(const TQualifierMap& qualifiers) {
  onCreate(++created_);
  return target_->CreateInstance(qualifiers);
}

void FaultyClass::EnumerateInstances(const TInstanceCallback& callback, int flag,
                                     const TQualifierMap& qualifiers) {
  target_->EnumerateInstances(callback, flag, qualifiers);
}
