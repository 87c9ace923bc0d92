// SPDX-License-Identifier: Apache-2.0
#include "plugin/collector.h"

#include <algorithm>
#include <utility>

#include "framework/add_to_vector_callback.h"
#include "framework/root_object.h"

using NQZMVTQ20::ICIMClass;
using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::ILogger;
using NQZMVTQ20::TAddToVectorCallback;
using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TPluginManagerProvider;
using NQZMVTQ20::TRootObject;

TPci::TPci() = default;

TPci::TPci(std::shared_ptr<ICIMClass> cimClass) : class_(cimClass.get()) {}

TPci::TPci(std::shared_ptr<ICIMClass> cimClass, TPluginManagerProvider* infoHandle)
    : class_(cimClass.get()), infoHandle_(infoHandle) {}

TPci::~TPci() = default;

ICIMClass* TPci::GetCIMClass() { return class_; }

TPluginManagerProvider* TPci::GetInfoHandle() { return infoHandle_; }

std::vector<ICIMInstance*> TPci::GetCIMInstances() {
  return GetCIMInstances(GetCIMClass()->GetName({}));
}

void TPci::Write(const std::string& text, ILogger::EVTQLogSeverity severity) const {
  if (infoHandle_ == nullptr || text.empty()) return;
  TRootObject::GetCoreLogger()->Write(severity, text);
}

void TPci::WriteError(const std::string& text) const { Write(text, ILogger::kError); }
void TPci::WriteWarning(const std::string& text) const { Write(text, ILogger::kWarning); }
void TPci::WriteStatus(const std::string& text) const { Write(text, ILogger::kStatus); }
void TPci::WriteDebug(const std::string& text) const { Write(text, ILogger::kDebug); }
void TPci::WriteVerbose(const std::string& text) const { Write(text, ILogger::kVerbose); }

ICIMInstance* TPci::GenerateCIMInstance(TPropertyMap properties, std::string className) {
  return MakeInstance(properties, className);
}

ICIMInstance* TPci::MakeInstance(const TPropertyMap& properties, const std::string& className) {
  WriteVerbose("TPci::generateCIMInstance - Generating CIM instance for class " + className + ".");
  const std::shared_ptr<ICIMInstance> instance = GetCIMClass()->CreateInstance({});
  for (const auto& [name, value] : properties) instance->SetProperty(name, value, {});
  if (GetCIMClass()->GetName({}) == className) instance->Commit({});
  return instance.get();
}

bool TPci::IsDuplicateInstance(ICIMInstance* candidate) {
  const std::shared_ptr<ICIMClass> cimClass = candidate->GetClass({});
  const TCIMReference reference = candidate->GetObjectReference({});
  std::vector<std::shared_ptr<ICIMInstance>> instances;
  cimClass->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(instances), 0, {});
  return std::any_of(instances.begin(), instances.end(), [&](const auto& instance) {
    return instance->GetObjectReference({}) == reference;
  });
}
