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

/// Loads plug-ins into this process and keeps them side by side. It must be installed
/// (vtq::SetPluginManager) before it loads anything. Unloads, in reverse order, what is still
/// loaded when it is destroyed.
class VTQ_EXPORT PluginManager final : public NQZMVTQ20::TPluginManagerNamespace {
 public:
  PluginManager();
  PluginManager(const PluginManager&) = delete;
  PluginManager& operator=(const PluginManager&) = delete;
  ~PluginManager() override;

  /// Loads the library `file` (a path; one without a slash is in the current directory) and hands
  /// its object the provider handle. The plug-in stays the manager's; the reference is valid until
  /// it is unloaded. Throws TVTQException when the file cannot be loaded, is loaded already, does
  /// not register exactly one plug-in, or is built for a version of the interface that does not
  /// fit, or when this manager is not installed.
  Plugin& Load(const std::string& file);

  /// Ends the plug-in's object (with DeInit first where that is still to come) and unloads its
  /// library. Throws TVTQException for a plug-in that is not this manager's.
  void Unload(const Plugin& plugin);

  /// Ends the plug-in's object as Unload does, and leaves its library loaded as long as this
  /// manager lives: the plug-in is this manager's no more. For a host that is about to end, which
  /// is spared the time that unloading takes. Throws like Unload.
  void End(const Plugin& plugin);

  const std::vector<std::unique_ptr<Plugin>>& GetPlugins() const noexcept { return plugins_; }

  /// What plug-ins or their host did against the contract so far, a sentence each, oldest first:
  /// a query before Init, a second Init, DeInit without Init, unloading without DeInit, an
  /// exception while unloading, instances that were created and not committed, namespaces, classes
  /// or instances still held after a query. A call that comes at the wrong time is noted and made.
  const std::vector<std::string>& GetViolations() const noexcept { return violations_; }

  /// A plug-in that registers while Load loads nothing, because the host loaded its library by
  /// hand, joins the plug-ins at once. The manager keeps its library loaded until it unloads the
  /// plug-in.
  void RegisterPlugin(NQZMVTQ20::IPluginCallbacks* callbacks) override;
  std::string GetName(const NQZMVTQ20::TQualifierMap& qualifiers) const override;
  std::shared_ptr<NQZMVTQ20::ICIMClass> GetClass(
      const std::string& name, const NQZMVTQ20::TQualifierMap& qualifiers) override;

 private:
  friend class Plugin;

  /// Takes the plug-in out of those that are this manager's. Throws like Unload.
  std::unique_ptr<Plugin> Take(const Plugin& plugin);

  std::vector<std::unique_ptr<Plugin>> ended_;
  std::vector<std::unique_ptr<Plugin>> plugins_;
  // What the library that Load is loading registers; null while it loads none.
  std::vector<NQZMVTQ20::IPluginCallbacks*>* loading_ = nullptr;
  std::vector<std::string> violations_;
};

/// One loaded plug-in library and the object that it registered.
class VTQ_EXPORT Plugin final {
 public:
  /// Loads nothing yet: plug-ins are made by the manager.
  Plugin(PluginManager& manager, std::string file);
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;
  ~Plugin();

  const std::string& GetFile() const noexcept { return provider_.GetPluginFile(); }
  int GetType() const;
  std::string GetName() const;
  std::string GetVersion() const;
  std::string GetInterfaceVersion() const;

  /// Throws TVTQException as Load does for a plug-in that was loaded by hand and does not fit.
  /// Exceptions of the plug-in pass through.
  void Init();
  /// Asks the plug-in for the instances of `classes`. Exceptions of the plug-in pass through. Does
  /// nothing when the plug-in answers no queries.
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
