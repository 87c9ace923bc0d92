// SPDX-License-Identifier: Apache-2.0

// A library that registers two objects that do not implement queries.

#include <string>

#include "framework/logger.h"
#include "framework/plugin_callbacks.h"
#include "framework/plugin_manager_namespace.h"
#include "framework/root_object.h"

namespace {

using namespace NQZMVTQ20;

class Twin final : public IPluginCallbacks {
 public:
  int GetType() override { return 0; }
  std::string GetName() override { return "Twin"; }
  std::string GetVersion() override { return "1"; }
  std::string GetInterfaceVersion() override { return "1.0"; }
  void PrepareForUnload() override {
    fdrWriteLog(ILogger::kDebug, "a twin ends");
    delete this;
  }
  void Init() override {}
  void DeInit() override {}
};

const bool isRegistered = [] {
  const auto manager =
      std::dynamic_pointer_cast<TPluginManagerNamespace>(TRootObject::GetPluginManager());
  if (!manager) return false;
  manager->RegisterPlugin(new Twin);
  manager->RegisterPlugin(new Twin);
  return true;
}();

}  // namespace
