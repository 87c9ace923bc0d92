// SPDX-License-Identifier: Apache-2.0

// A plug-in that publishes the machine's network interfaces as instances of ACME_NetworkPort, which
// network_ports.json declares.

#include <filesystem>
#include <string>

#include "framework/cim_class.h"
#include "framework/cim_instance.h"
#include "framework/cim_value.h"
#include "framework/os_specific.h"
#include "framework/plugin_basic_query_callbacks.h"
#include "framework/plugin_callbacks.h"
#include "framework/plugin_manager_namespace.h"
#include "framework/root_object.h"

namespace {

using namespace NQZMVTQ20;

const std::string kDirectory = "/sys/class/net/";

/// Reads a file of one line about an interface from the kernel.
std::string Line(const std::string& port, const std::string& name) {
  const std::string text = TOSSpecific::CaptureFile(kDirectory + port + "/" + name);
  return text.substr(0, text.find('\n'));
}

void Publish(ICIMClass& cimClass, const std::string& port) {
  const std::shared_ptr<ICIMInstance> instance = cimClass.CreateInstance({});
  instance->SetProperty("DeviceID", TCIMValue(port), {});
  instance->SetProperty("PermanentAddress", TCIMValue(Line(port, "address")), {});
  instance->SetProperty("MaxTransmissionUnit", TCIMValue(std::stoul(Line(port, "mtu"))), {});
  instance->SetProperty("IsUp", TCIMValue(Line(port, "operstate") == "up"), {});
  instance->Commit({});
}

class NetworkPorts final : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
 public:
  int GetType() override { return 0; }
  std::string GetName() override { return "Network Port Collector"; }
  std::string GetVersion() override { return "1.0"; }
  std::string GetInterfaceVersion() override { return "1.0"; }
  void Init() override {}
  void DeInit() override {}
  void PrepareForUnload() override { delete this; }

  void GetData(std::shared_ptr<ICIMNamespace>,
               std::vector<std::shared_ptr<ICIMClass>>& classes) override {
    for (const std::shared_ptr<ICIMClass>& cimClass : classes) {
      if (cimClass->GetName({}) != "ACME_NetworkPort") continue;  // not ours
      if (!TOSSpecific::FileExists(kDirectory)) continue;
      for (const auto& port : std::filesystem::directory_iterator(kDirectory)) {
        if (port.is_directory()) Publish(*cimClass, port.path().filename());
      }
    }
  }
};

/// Runs while the library is loaded; the framework owns the plug-in from then on.
const bool registered = [] {
  const auto manager =
      std::dynamic_pointer_cast<TPluginManagerNamespace>(TRootObject::GetPluginManager());
  if (manager) manager->RegisterPlugin(new NetworkPorts);
  return manager != nullptr;
}();

}  // namespace
