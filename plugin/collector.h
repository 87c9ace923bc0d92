// SPDX-License-Identifier: Apache-2.0
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

/// Base of all collectors. A collector provides one class for one query. The order of the virtual
/// functions is part of the binary interface.
class VTQ_EXPORT TPci {
 public:
  /// Has no class yet; logs nothing.
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
  /// Creates and commits the instances of `className`. Use the pointers only for counting: the
  /// framework owns the instances, and one that was not committed may already be destroyed.
  virtual std::vector<NQZMVTQ20::ICIMInstance*> GetCIMInstances(std::string className) = 0;

  NQZMVTQ20::TPluginManagerProvider* GetInfoHandle();

  /// Logs `text`; nothing when it is empty or there is no provider.
  void Write(const std::string& text, NQZMVTQ20::ILogger::EVTQLogSeverity severity) const;
  void WriteError(const std::string& text) const;
  void WriteWarning(const std::string& text) const;
  void WriteStatus(const std::string& text) const;
  void WriteDebug(const std::string& text) const;
  void WriteVerbose(const std::string& text) const;

  /// Creates an instance of the collector's class, sets all `properties` in name order, and commits
  /// it if the class is named `className`. Exceptions of the framework pass through. Use the
  /// pointer only for counting; do not dereference it.
  NQZMVTQ20::ICIMInstance* GenerateCIMInstance(TPropertyMap properties, std::string className);

  /// The same as GenerateCIMInstance, without copying `properties`.
  [[gnu::visibility("hidden")]] NQZMVTQ20::ICIMInstance* MakeInstance(
      const TPropertyMap& properties, const std::string& className);

  /// Whether the framework holds an instance of the candidate's class with the candidate's object
  /// path; true for a committed candidate.
  bool IsDuplicateInstance(NQZMVTQ20::ICIMInstance* candidate);

 private:
  NQZMVTQ20::ICIMClass* class_ = nullptr;
  NQZMVTQ20::TPluginManagerProvider* infoHandle_ = nullptr;
};
