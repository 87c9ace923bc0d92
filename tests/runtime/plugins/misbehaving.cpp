// SPDX-License-Identifier: Apache-2.0

// A plug-in that misbehaves as the environment variable RUNTIME_TEST_MISDEED says.

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "framework/cim_class.h"
#include "framework/cim_instance.h"
#include "framework/plugin_basic_query_callbacks.h"
#include "framework/plugin_callbacks.h"
#include "framework/plugin_manager_namespace.h"
#include "framework/root_object.h"

namespace {

using namespace NQZMVTQ20;

bool IsAskedTo(const std::string& misdeed) {
  const char* asked = std::getenv("RUNTIME_TEST_MISDEED");
  return asked != nullptr && asked == misdeed;
}

// An exception whose code is unloaded with the library.
struct OwnException {
  virtual ~OwnException() = default;
};

class Misbehaving final : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
 public:
  int GetType() override { return 0; }
  std::string GetName() override { return "Misbehaving"; }
  std::string GetVersion() override { return "1"; }
  std::string GetInterfaceVersion() override {
    constexpr std::string_view kVersion = "answer interface version ";
    const char* asked = std::getenv("RUNTIME_TEST_MISDEED");
    const std::string misdeed = asked == nullptr ? "" : asked;
    return misdeed.starts_with(kVersion) ? misdeed.substr(kVersion.size()) : "1.0";
  }
  void PrepareForUnload() override {
    const bool shallThrow = IsAskedTo("throw in PrepareForUnload");
    delete this;
    if (shallThrow) throw OwnException();
  }
  void Init() override {
    if (IsAskedTo("throw in Init")) throw std::runtime_error("no fans here");
  }
  void DeInit() override {
    if (IsAskedTo("throw in DeInit")) throw std::runtime_error("cannot stop");
  }

  void GetData(std::shared_ptr<ICIMNamespace> nameSpace,
               std::vector<std::shared_ptr<ICIMClass>>& classes) override {
    if (IsAskedTo("keep the namespace")) nameSpace_ = nameSpace;
    if (IsAskedTo("keep a class")) class_ = classes.front();
    const std::shared_ptr<ICIMInstance> fan = classes.front()->CreateInstance({});
    if (IsAskedTo("keep an uncommitted instance")) instance_ = fan;
    if (instance_) return;
    fan->SetProperty("DeviceID", TCIMValue("fan0"), {});
    fan->SetProperty("Bank", TCIMValue(static_cast<unsigned short>(1)), {});
    fan->Commit({});
    if (IsAskedTo("keep an instance")) instance_ = fan;
    if (IsAskedTo("keep an instance and throw")) {
      instance_ = fan;
      throw std::runtime_error("a fan is stuck");
    }
  }

 private:
  std::shared_ptr<ICIMNamespace> nameSpace_;
  std::shared_ptr<ICIMClass> class_;
  std::shared_ptr<ICIMInstance> instance_;
};

const bool isRegistered = [] {
  const auto manager =
      std::dynamic_pointer_cast<TPluginManagerNamespace>(TRootObject::GetPluginManager());
  if (manager) manager->RegisterPlugin(new Misbehaving);
  return manager != nullptr;
}();

}  // namespace
