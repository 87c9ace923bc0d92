// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/collect/plugin_files.h"
#include "host/collect/trouble_report.h"
#include "runtime/logger.h"
#include "runtime/plugin_manager.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Where the log records of a session go, apart from its report.
struct LogSettings {
  vtq::LogSink file;         ///< empty: no log file
  std::optional<int> level;  ///< for standard error, see MakeStderrSink
};

/// A repository with the declared classes, a log, and plug-ins that fill the repository. It is
/// installed as the framework's singletons for its lifetime, so only one may exist at a time.
class Session final {
 public:
  /// `report` must outlive the session. Throws TVTQException when two of `classes` have one name.
  Session(TroubleReport& report, const LogSettings& log, std::vector<vtq::ClassSchema> classes);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  /// Calls EndPlugins and unloads the plug-ins.
  ~Session();

  /// Loads a plug-in and initialises it. Throws TVTQException when either fails.
  void Load(const PluginFile& plugin);

  /// Collects class by class in the given order: asks the plug-in whose class file declares the
  /// class, or every plug-in if none does. Failures go to the report and do not stop the other
  /// classes. The classes must be declared.
  void Collect(const std::vector<std::string>& classes);

  /// De-initialises and destroys the plug-in objects; their libraries and the repository stay as
  /// long as the session. Returns the violations of the framework's contract, a sentence each.
  std::vector<std::string> EndPlugins();

  const vtq::Namespace& GetRepository() const noexcept { return *repository_; }
  /// The name of the system, see NQZMVTQ20::TCIMSchemaHelper.
  std::string GetSystemName() const;
  /// When the machine's data was collected, in UTC: "2026-01-31T23:59:59Z". Empty: unknown.
  void SetTime(std::string time) { time_ = std::move(time); }
  const std::string& GetTime() const noexcept { return time_; }
  const TroubleReport& GetReport() const noexcept { return report_; }
  /// Returns why a log record could not be written; nothing if all were.
  std::optional<std::string> GetLogFailure() const;
  const vtq::PluginManager& GetPlugins() const noexcept { return *manager_; }

 private:
  bool IsAsked(const vtq::Plugin& plugin, const std::string& className) const;
  void Ask(vtq::Plugin& plugin, const std::string& className);

  TroubleReport& report_;
  std::shared_ptr<vtq::Logger> logger_;
  std::shared_ptr<vtq::PluginManager> manager_;
  std::shared_ptr<vtq::Namespace> repository_;
  std::string time_;
  std::map<std::string, std::string> servers_;  ///< the file of the plug-in, by class
};

}  // namespace pciinfo
