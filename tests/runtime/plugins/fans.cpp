// SPDX-License-Identifier: Apache-2.0

// A plug-in that fulfils the contract. It writes every call to the core log.

#include <memory>
#include <string>

#include "framework/cim_class.h"
#include "framework/cim_instance.h"
#include "framework/logger.h"
#include "framework/plugin_basic_query_callbacks.h"
#include "framework/plugin_callbacks.h"
#include "framework/plugin_manager_namespace.h"
#include "framework/plugin_manager_provider.h"
#include "framework/root_object.h"

namespace {

using namespace NQZMVTQ20;

void Log(const std::string& text) { fdrWriteLog(ILogger::kDebug, text.c_str()); }

class Fans final : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
 public:
  Fans() {
    const auto manager =
        std::dynamic_pointer_cast<TPluginManagerNamespace>(TRootObject::GetPluginManager());
    if (!manager) return;
    manager->RegisterPlugin(this);
    isRegistered_ = true;
    Log(provider_ == nullptr ? "registered without provider" : "registered with provider");
  }

  bool IsRegistered() const { return isRegistered_; }

  int GetType() override { return 0; }
  std::string GetName() override { return "Fan Collector"; }
  std::string GetVersion() override { return "1.2"; }
  std::string GetInterfaceVersion() override { return "1.0"; }
  void PrepareForUnload() override {
    Log("PrepareForUnload");
    delete this;
  }
  void Init() override { Log("Init " + provider_->GetPluginFile()); }
  void DeInit() override { Log("DeInit"); }

  void GetData(std::shared_ptr<ICIMNamespace> nameSpace,
               std::vector<std::shared_ptr<ICIMClass>>& classes) override {
    Log("GetData " + nameSpace->GetName({}));
    for (const std::shared_ptr<ICIMClass>& fanClass : classes) {
      if (fanClass->GetName({}) != "ACME_Fan") continue;
      fanClass->CreateInstance({});
      const std::shared_ptr<ICIMInstance> fan = fanClass->CreateInstance({});
      fan->SetProperty("DeviceID", TCIMValue("fan0"), {});
      fan->SetProperty("Bank", TCIMValue(static_cast<unsigned short>(1)), {});
      fan->Commit({});
    }
  }

 private:
  bool isRegistered_ = false;
};

const bool isRegistered = [] {
  auto fans = std::make_unique<Fans>();
  return fans->IsRegistered() && fans.release() != nullptr;
}();

}  // namespace
