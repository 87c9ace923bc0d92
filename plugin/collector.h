#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/cim_class.h"
#include "framework/cim_instance.h"
#include "framework/export.h"
#include "framework/logger.h"
#include "framework/plugin_manager_provider.h"
#include "plugin/property_map.h"

/// Base of all collectors: one collector serves one class of one query. The order of the virtual
/// operations is part of the binary interface.
class VTQ_EXPORT TPci {
 public:
  /// Serves no class yet; logs nothing.
  TPci();
  /// Neither the class nor the provider is owned; both must outlive the collector. Without a
  /// provider the collector logs nothing.
  explicit TPci(std::shared_ptr<NQZMVTQ20::ICIMClass> cimClass);
  TPci(std::shared_ptr<NQZMVTQ20::ICIMClass> cimClass,
       NQZMVTQ20::TPluginManagerProvider* infoHandle);

  virtual NQZMVTQ20::ICIMClass* GetCIMClass();
  virtual ~TPci();
  /// The instances of the collector's own class.
  virtual std::vector<NQZMVTQ20::ICIMInstance*> GetCIMInstances();
  /// Creates and commits the instances of `className`. The pointers are a count: the framework owns
  /// the instances, and one that was not committed may be gone already.
  virtual std::vector<NQZMVTQ20::ICIMInstance*> GetCIMInstances(std::string className) = 0;

  NQZMVTQ20::TPluginManagerProvider* GetInfoHandle();

  /// Logs `text`; nothing when it is empty or there is no provider.
  void Write(const std::string& text, NQZMVTQ20::ILogger::EVTQLogSeverity severity) const;
  void WriteError(const std::string& text) const;
  void WriteWarning(const std::string& text) const;
  void WriteStatus(const std::string& text) const;
  void WriteDebug(const std::string& text) const;
  void WriteVerbose(const std::string& text) const;

  /// Makes an instance of the collector's class, sets all `properties` in name order, and commits
  /// it if the class is called `className`. Exceptions of the framework pass through. The pointer
  /// counts, and is not to be followed.
  NQZMVTQ20::ICIMInstance* GenerateCIMInstance(TPropertyMap properties, std::string className);

  /// Does what GenerateCIMInstance does with properties that stay the caller's.
  [[gnu::visibility("hidden")]] NQZMVTQ20::ICIMInstance* MakeInstance(
      const TPropertyMap& properties, const std::string& className);

  /// Whether the framework holds an instance of the candidate's class with the candidate's object
  /// path; a committed candidate finds itself.
  bool IsDuplicateInstance(NQZMVTQ20::ICIMInstance* candidate);

 private:
  NQZMVTQ20::ICIMClass* class_ = nullptr;
  NQZMVTQ20::TPluginManagerProvider* infoHandle_ = nullptr;
};
