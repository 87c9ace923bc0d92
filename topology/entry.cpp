// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "framework/cim_class.h"
#include "framework/cim_instance.h"
#include "framework/cim_namespace.h"
#include "framework/exception.h"
#include "framework/interface_version.h"
#include "framework/logger.h"
#include "framework/plugin_basic_query_callbacks.h"
#include "framework/plugin_callbacks.h"
#include "framework/plugin_manager_namespace.h"
#include "framework/root_object.h"
#include "topology/instances.h"
#include "topology/kernel_files.h"
#include "topology/read_failures.h"

namespace topology {
namespace {

using NQZMVTQ20::ICIMClass;
using NQZMVTQ20::ILogger;

bool IsServed(const std::string& className) {
  constexpr std::array<const char*, 5> kServed{kFunctionClass, kDetailsClass, kSlotClass,
                                               kFunctionInSlotClass, kSharedPortClass};
  for (const char* served : kServed) {
    if (className == served) return true;
  }
  return false;
}

void CommitAll(const std::vector<Properties>& instances, ICIMClass& cimClass) {
  for (const Properties& properties : instances) {
    const auto instance = cimClass.CreateInstance({});
    for (const auto& [name, value] : properties) instance->SetProperty(name, value, {});
    instance->Commit({});
  }
}

void Answer(const Snapshot& snapshot, const std::string& nameSpace, const std::string& className,
            ICIMClass& cimClass) {
  if (className == kFunctionClass) return CommitFunctions(snapshot, cimClass);
  if (className == kDetailsClass) return CommitDetails(snapshot, cimClass);
  if (className == kSlotClass) return CommitAll(SlotInstances(snapshot), cimClass);
  if (className == kSharedPortClass) return CommitAll(SharedPortInstances(snapshot), cimClass);
  CommitAll(FunctionInSlotInstances(snapshot, nameSpace), cimClass);
}

/// The only object of the plug-in that the framework knows.
class Callbacks final : public NQZMVTQ20::IPluginCallbacks,
                        public NQZMVTQ20::IPluginBasicQueryCallbacks {
 public:
  int GetType() override { return 0; }
  std::string GetName() override { return "PCI Topology Collector"; }
  std::string GetVersion() override { return "1.0"; }
  std::string GetInterfaceVersion() override {
    return std::to_string(NQZMVTQ20::kInterfaceMajorVersion) + "." +
           std::to_string(NQZMVTQ20::kInterfaceMinorVersion);
  }
  void PrepareForUnload() override { delete this; }
  void Init() override {}
  void DeInit() override { snapshot_.reset(); }

  void GetData(std::shared_ptr<NQZMVTQ20::ICIMNamespace> nameSpace,
               std::vector<std::shared_ptr<ICIMClass>>& classes) override {
    const std::string nameSpaceName = nameSpace->GetName({});
    for (const auto& cimClass : classes) {
      const std::string className = cimClass->GetName({});
      if (!IsServed(className)) continue;
      Answer(SnapshotFor(className), nameSpaceName, className, *cimClass);
      LogReadFailures();
    }
  }

 private:
  /// Instances of one class refer to those of another, so all classes are answered from one
  /// snapshot. A class that is asked for again gets a new one.
  const Snapshot& SnapshotFor(const std::string& className) {
    if (!snapshot_ || !answered_.insert(className).second) {
      snapshot_ = Snapshot::Take(provider_);
      answered_ = {className};
    }
    return *snapshot_;
  }

  std::unique_ptr<Snapshot> snapshot_;
  std::set<std::string> answered_;
};

void LogRefusal(const char* why) noexcept {
  NQZMVTQ20::fdrWriteLog(ILogger::kError, "The PCI topology plug-in could not register:");
  NQZMVTQ20::fdrWriteLog(ILogger::kError, why);
}

void Register() {
  const auto registry = std::dynamic_pointer_cast<NQZMVTQ20::TPluginManagerNamespace>(
      NQZMVTQ20::TRootObject::GetPluginManager());
  if (!registry) return;
  auto callbacks = std::make_unique<Callbacks>();
  registry->RegisterPlugin(callbacks.get());
  // The registry owns the object now; PrepareForUnload deletes it.
  static_cast<void>(callbacks.release());
}

// Loading a library must not end the process, so a plug-in that is refused stays idle.
struct Registration {
  Registration() noexcept {
    try {
      Register();
    } catch (const std::exception& failure) {
      LogRefusal(failure.what());
    } catch (...) {
      LogRefusal("the registry threw something that is no standard exception");
    }
  }
};

const Registration registration;

}  // namespace
}  // namespace topology
