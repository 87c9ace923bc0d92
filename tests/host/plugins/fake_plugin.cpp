// SPDX-License-Identifier: Apache-2.0
#include "tests/host/plugins/fake_plugin.h"

#include "framework/plugin_manager_namespace.h"
#include "framework/root_object.h"
#include "tests/host/plugins/fixed_machine.h"

namespace fake {

using namespace NQZMVTQ20;

void FakePlugin::PrepareForUnload() {
  Log(ILogger::kDebug, "fake: PrepareForUnload");
  delete this;
}

void FakePlugin::Init() { Log(ILogger::kDebug, "fake: Init"); }

void FakePlugin::DeInit() { Log(ILogger::kDebug, "fake: DeInit"); }

void FakePlugin::GetData(std::shared_ptr<ICIMNamespace>,
                         std::vector<std::shared_ptr<ICIMClass>>& classes) {
  for (const std::shared_ptr<ICIMClass>& cimClass : classes) {
    Log(ILogger::kDebug, "fake: GetData " + cimClass->GetName({}));
    Serve(*cimClass);
  }
}

void FakePlugin::Serve(ICIMClass& cimClass) { MakeFixedInstances(cimClass); }

void Log(int severity, const std::string& text) { fdrWriteLog(severity, text.c_str()); }

bool Register(FakePlugin* plugin) {
  auto manager =
      std::dynamic_pointer_cast<TPluginManagerNamespace>(TRootObject::GetPluginManager());
  if (manager) manager->RegisterPlugin(plugin);
  return manager != nullptr;
}

}  // namespace fake
