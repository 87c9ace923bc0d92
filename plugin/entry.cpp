// SPDX-License-Identifier: Apache-2.0
#include "plugin/entry.h"

#include <array>

#include "board/system_board.h"
#include "framework/cim_class.h"
#include "framework/logger.h"
#include "framework/plugin_manager_namespace.h"
#include "framework/root_object.h"
#include "pci/dev_info.h"
#include "plugin/class_names.h"
#include "plugin/collector.h"
#include "slots/slot_info.h"

namespace NQZMVTQ20 {

std::int32_t gStarted = 0;

namespace {

using CollectorPtr = std::unique_ptr<TPci>;
using ClassPtr = std::shared_ptr<ICIMClass>;

template <class Collector>
CollectorPtr Make(const ClassPtr& cimClass, TPluginManagerProvider* provider) {
  return std::make_unique<Collector>(cimClass, provider);
}

struct ServedClass {
  const char* name;
  CollectorPtr (*make)(const ClassPtr& cimClass, TPluginManagerProvider* provider);
};

constexpr std::array<ServedClass, 7> kServedClasses{{
    {kPciDeviceClass, Make<TPciDevInfo>},
    {kPciBridgeClass, Make<TPciDevInfo>},
    {kDeviceInSlotClass, Make<TPciDevInfo>},
    {kPciRawDataClass, Make<TPciDevInfo>},
    {kSystemSlotClass, Make<TSlotInfo>},
    {kSystemBoardClass, Make<TSysBrd>},
    {kOnBoardDeviceClass, Make<TSysBrd>},
}};

// Writes to the core logger directly, because these lines are written with or without a provider
// handle.
void Log(ILogger::EVTQLogSeverity severity, const std::string& text) {
  TRootObject::GetCoreLogger()->Write(severity, text);
}

std::shared_ptr<TPluginManagerNamespace> FindRegistry() {
  return std::dynamic_pointer_cast<TPluginManagerNamespace>(TRootObject::GetPluginManager());
}

// The registry owns the object; PrepareForUnload deletes it.
void MakeCallbacks() { new TPciInfoCallbacks; }  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)

void LogRefusal(const char* why) noexcept {
  try {
    Log(ILogger::kError, std::string("The plug-in could not register: ") + why);
  } catch (...) {
    // The logger failed too, so the failure cannot be reported.
  }
}

// Without a registry nobody would own the object, so none is created. If the registry refuses it by
// any exception, the plug-in stays idle, because loading a library must not end the process.
struct Registration {
  Registration() noexcept {
    try {
      if (FindRegistry()) MakeCallbacks();
    } catch (const std::exception& failure) {
      LogRefusal(failure.what());
    } catch (...) {
      LogRefusal("the registry threw something that is no standard exception");
    }
  }
};

const Registration registration;

}  // namespace

TPciInfoCallbacks::TPciInfoCallbacks() {
  if (const auto registry = FindRegistry()) registry->RegisterPlugin(this);
}

TPciInfoCallbacks::~TPciInfoCallbacks() = default;

int TPciInfoCallbacks::GetType() { return 0; }
std::string TPciInfoCallbacks::GetName() { return "PCI Information Collector"; }
std::string TPciInfoCallbacks::GetVersion() { return "1.0"; }
std::string TPciInfoCallbacks::GetInterfaceVersion() { return "1.0"; }

void TPciInfoCallbacks::PrepareForUnload() { delete this; }

void TPciInfoCallbacks::Init() {
  Log(ILogger::kDebug, "TPciInfoCallbacks::Init - Initializing the plugin.");
}

void TPciInfoCallbacks::DeInit() {
  Log(ILogger::kDebug, "TPciInfoCallbacks::DeInit - De-initializing the plugin.");
}

void TPciInfoCallbacks::GetData(std::shared_ptr<ICIMNamespace>,
                                std::vector<std::shared_ptr<ICIMClass>>& classes) {
  for (const ClassPtr& cimClass : classes) {
    const std::string name = cimClass->GetName({});
    Log(ILogger::kDebug, "TPciInfoCallbacks::GetData - Received request for class " + name + ".");
    for (const ServedClass& served : kServedClasses) {
      if (name != served.name) continue;
      const CollectorPtr collector = served.make(cimClass, provider_);
      RetrieveDataForClass(collector.get());
      break;
    }
  }
  Log(ILogger::kDebug, "TPciInfoCallbacks::GetData - Normal exit from plugin.");
}

int TPciInfoCallbacks::RetrieveDataForClass(TPci* collector) {
  std::vector<ICIMInstance*> instances;
  try {
    instances = collector->GetCIMInstances();
  } catch (...) {
    Log(ILogger::kStatus, "PCIInfo plugin threw unknown exception");
  }
  // The lower-case routine name is what log readers filter for.
  Log(ILogger::kDebug,
      instances.empty()
          ? "TPciInfoCallbacks::retrieveDataForClass - No instances of the requested class were "
            "created."
          : "TPciInfoCallbacks::retrieveDataForClass - Data successfully retrieved.");
  return 0;
}

}  // namespace NQZMVTQ20
