// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/plugin_manager_namespace.h"
#include "framework/plugin_manager_provider.h"

namespace NQZMVTQ20 {
class ICIMClass;
class IPluginBasicQueryCallbacks;
}  // namespace NQZMVTQ20

namespace vtq {

class Plugin;

/// Loads plug-ins into this process. It must be installed (vtq::SetPluginManager) before it loads
/// anything. Its destructor unloads the remaining plug-ins in reverse order.
class VTQ_EXPORT PluginManager final : public NQZMVTQ20::TPluginManagerNamespace {
 public:
  PluginManager();
  PluginManager(const PluginManager&) = delete;
  PluginManager& operator=(const PluginManager&) = delete;
  ~PluginManager() override;

  /// Loads the library `file` (a path; without a slash, a file in the current directory) and gives
  /// its object the provider handle. The manager owns the plug-in; the reference is valid until it
  /// is unloaded. Throws TVTQException when the file cannot be loaded, is already loaded, does not
  /// register exactly one plug-in, or is built for an incompatible version of the interface, or
  /// when this manager is not installed.
  Plugin& Load(const std::string& file);

  /// Destroys the plug-in's object, after DeInit if that was not called yet, and unloads its
  /// library. Throws TVTQException for a plug-in of another manager.
  void Unload(const Plugin& plugin);

  /// Destroys the plug-in's object like Unload, but leaves its library loaded for the lifetime of
  /// this manager; removes the plug-in from the manager. It saves a host that is about to exit the
  /// time for unloading. Throws like Unload.
  void End(const Plugin& plugin);

  const std::vector<std::unique_ptr<Plugin>>& GetPlugins() const noexcept { return plugins_; }

  /// Violations of the contract by plug-ins or their host so far, a sentence each, oldest first: a
  /// query before Init, a second Init, DeInit without Init, unloading without DeInit, an exception
  /// while unloading, instances that were created and not committed, namespaces, classes or
  /// instances still held after a query. A call at the wrong time is reported here and made anyway.
  const std::vector<std::string>& GetViolations() const noexcept { return violations_; }

  /// If a plug-in registers while Load is not running, because the host loaded its library itself,
  /// it is added to the plug-ins at once. The manager keeps its library loaded until it unloads the
  /// plug-in.
  void RegisterPlugin(NQZMVTQ20::IPluginCallbacks* callbacks) override;
  std::string GetName(const NQZMVTQ20::TQualifierMap& qualifiers) const override;
  std::shared_ptr<NQZMVTQ20::ICIMClass> GetClass(
      const std::string& name, const NQZMVTQ20::TQualifierMap& qualifiers) override;

 private:
  friend class Plugin;

  /// Removes the plug-in from this manager. Throws like Unload.
  std::unique_ptr<Plugin> Take(const Plugin& plugin);

  std::vector<std::unique_ptr<Plugin>> ended_;
  std::vector<std::unique_ptr<Plugin>> plugins_;
  // The objects that the library being loaded has registered; null while Load is not running.
  std::vector<NQZMVTQ20::IPluginCallbacks*>* loading_ = nullptr;
  std::vector<std::string> violations_;
};

/// One loaded plug-in library and the object that it registered.
class VTQ_EXPORT Plugin final {
 public:
  /// Loads nothing yet. Only the manager creates plug-ins.
  Plugin(PluginManager& manager, std::string file);
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;
  ~Plugin();

  const std::string& GetFile() const noexcept { return provider_.GetPluginFile(); }
  int GetType() const;
  std::string GetName() const;
  std::string GetVersion() const;
  std::string GetInterfaceVersion() const;

  /// Throws TVTQException for a plug-in that the host loaded itself and that Load would refuse.
  /// Exceptions of the plug-in pass through.
  void Init();
  /// Asks the plug-in for the instances of `classes`. Exceptions of the plug-in pass through. Does
  /// nothing when the plug-in does not implement queries.
  void GetData(const std::shared_ptr<NQZMVTQ20::ICIMNamespace>& nameSpace,
               std::vector<std::shared_ptr<NQZMVTQ20::ICIMClass>>& classes);
  void DeInit();

 private:
  friend class PluginManager;
  enum class State { kLoaded, kInitialized, kDeInitialized };

  void Open();
  void Adopt(const std::vector<NQZMVTQ20::IPluginCallbacks*>& registered);
  void JoinByHand(NQZMVTQ20::IPluginCallbacks* callbacks);
  void CheckInterface() const;
  void Connect();
  void EndObject();
  void NoteViolation(const std::string& what);

  PluginManager& manager_;
  NQZMVTQ20::TPluginManagerProvider provider_;
  void* library_ = nullptr;
  NQZMVTQ20::IPluginCallbacks* callbacks_ = nullptr;
  NQZMVTQ20::IPluginBasicQueryCallbacks* queries_ = nullptr;
  State state_ = State::kLoaded;
};

}  // namespace vtq
