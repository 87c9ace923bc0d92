// SPDX-License-Identifier: Apache-2.0
#include "runtime/plugin_manager.h"

#include <dlfcn.h>

#include <algorithm>
#include <typeinfo>

#include "framework/cim_class.h"
#include "framework/exception.h"
#include "framework/plugin_callbacks.h"
#include "framework/root_object.h"

namespace vtq {

using NQZMVTQ20::TQualifierMap;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

namespace {

// The object may still be under construction. Its run-time type is known even then, and the type
// information is in the library that the object comes from.
std::string FileThatHolds(const NQZMVTQ20::IPluginCallbacks& callbacks) {
  Dl_info found;
  return ::dladdr(&typeid(callbacks), &found) != 0 ? found.dli_fname : std::string();
}

}  // namespace

PluginManager::PluginManager() = default;

PluginManager::~PluginManager() {
  while (!plugins_.empty()) plugins_.pop_back();
}

Plugin& PluginManager::Load(const std::string& file) {
  if (NQZMVTQ20::TRootObject::GetPluginManager().get() != this) {
    throw TVTQException("the plug-in " + file +
                        " cannot be loaded by a plug-in manager that is not installed: call "
                        "SetPluginManager first");
  }
  auto plugin = std::make_unique<Plugin>(*this, file);
  plugin->Open();
  return *plugins_.emplace_back(std::move(plugin));
}

std::unique_ptr<Plugin> PluginManager::Take(const Plugin& plugin) {
  const auto found = std::find_if(
      plugins_.begin(), plugins_.end(),
      [&plugin](const std::unique_ptr<Plugin>& held) { return held.get() == &plugin; });
  if (found == plugins_.end()) {
    throw TVTQException("a plug-in can only be unloaded by the manager that loaded it",
                        TVTQStatusCode::kInvalidArgument);
  }
  std::unique_ptr<Plugin> taken = std::move(*found);
  plugins_.erase(found);
  return taken;
}

void PluginManager::Unload(const Plugin& plugin) { Take(plugin).reset(); }

void PluginManager::End(const Plugin& plugin) {
  ended_.push_back(Take(plugin));
  ended_.back()->EndObject();
}

void PluginManager::RegisterPlugin(NQZMVTQ20::IPluginCallbacks* callbacks) {
  if (callbacks == nullptr) {
    throw TVTQException("a null pointer cannot be registered as a plug-in",
                        TVTQStatusCode::kInvalidArgument);
  }
  if (loading_ != nullptr) {
    loading_->push_back(callbacks);
    return;
  }
  plugins_.push_back(std::make_unique<Plugin>(*this, FileThatHolds(*callbacks)));
  plugins_.back()->JoinByHand(callbacks);
}

std::string PluginManager::GetName(const TQualifierMap&) const { return "root/plugins"; }

std::shared_ptr<NQZMVTQ20::ICIMClass> PluginManager::GetClass(const std::string& name,
                                                              const TQualifierMap&) {
  throw TVTQException("the plug-in manager has no class " + name, TVTQStatusCode::kNotFound);
}

}  // namespace vtq
