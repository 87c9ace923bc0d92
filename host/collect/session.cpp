// SPDX-License-Identifier: Apache-2.0
#include "host/collect/session.h"

#include <atomic>
#include <exception>
#include <new>
#include <utility>

#include "framework/exception.h"
#include "framework/schema_helper.h"
#include "host/base/namespace_name.h"
#include "host/collect/stderr_log.h"
#include "runtime/root.h"
#include "runtime/service_failures.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::ILogger;

std::shared_ptr<vtq::Logger> MakeLogger(TroubleReport& report, const LogSettings& settings) {
  auto logger = std::make_shared<vtq::Logger>();
  if (settings.file) logger->AddSink(settings.file);
  logger->AddSink(
      MakeStderrSink(settings.level, report),
      static_cast<ILogger::EVTQLogSeverity>(settings.level.value_or(ILogger::kWarning)));
  logger->AddSink([&report](ILogger::EVTQLogSeverity severity,
                            const std::string& text) { report.AddRecord(severity, text); },
                  ILogger::kStatus);
  return logger;
}

std::shared_ptr<vtq::Namespace> MakeRepository(std::vector<vtq::ClassSchema> classes) {
  std::shared_ptr<vtq::Namespace> repository = vtq::Namespace::Create(kNamespaceName);
  for (vtq::ClassSchema& schema : classes) repository->Declare(std::move(schema));
  return repository;
}

/// Runs `step` of a plug-in. Returns why it failed, or nothing. Keeps only the text of the
/// exception, because its type may come from the plug-in's library, which is unloaded later.
template <class Step>
std::optional<std::string> FailureOf(const Step& step) {
  try {
    step();
    return std::nullopt;
  } catch (const std::bad_alloc&) {
    return "the plug-in failed: there is not enough memory (see --memory-limit)";
  } catch (const std::exception& failure) {
    return std::string("the plug-in failed: ") + failure.what();
  } catch (...) {
    return "the plug-in failed and did not say why";
  }
}

/// Plug-ins may drop the reason of what went wrong. This one the host can learn before they do.
[[noreturn]] void ReportLackOfMemory() {
  // The report needs memory too, and a plug-in's threads may lack it at once.
  static std::atomic<bool> isReporting = false;
  if (isReporting.exchange(true)) throw std::bad_alloc();
  vtq::ReportServiceFailure("there is not enough memory (see --memory-limit)");
  isReporting = false;
  throw std::bad_alloc();
}

}  // namespace

Session::Session(TroubleReport& report, const LogSettings& log,
                 std::vector<vtq::ClassSchema> classes)
    : report_(report),
      logger_(MakeLogger(report, log)),
      manager_(std::make_shared<vtq::PluginManager>()),
      repository_(MakeRepository(std::move(classes))) {
  vtq::SetCoreLogger(logger_);
  vtq::SetPluginManager(manager_);
  std::set_new_handler(&ReportLackOfMemory);
  vtq::ObserveServiceFailures(
      [&report](const std::string& description) { report.AddServiceFailure(description); });
  vtq::ObserveDoubtfulOutputs(
      [&report](const std::string& description) { report.AddDoubt(description); });
}

Session::~Session() {
  EndPlugins();
  vtq::ObserveDoubtfulOutputs(nullptr);
  vtq::ObserveServiceFailures(nullptr);
  std::set_new_handler(nullptr);
  vtq::SetPluginManager(nullptr);
  vtq::SetCoreLogger(nullptr);
}

void Session::Load(const PluginFile& plugin) {
  vtq::Plugin& loaded = manager_->Load(plugin.file);
  if (const auto failure = FailureOf([&loaded] { loaded.Init(); })) {
    manager_->Unload(loaded);
    throw NQZMVTQ20::TVTQException(plugin.file + ": " + *failure);
  }
  for (const std::string& className : plugin.classes) servers_[className] = plugin.file;
}

void Session::Collect(const std::vector<std::string>& classes) {
  for (const std::string& className : classes) {
    report_.BeginClass(className);
    for (const auto& plugin : manager_->GetPlugins()) {
      if (IsAsked(*plugin, className)) Ask(*plugin, className);
    }
    report_.EndClass();
  }
}

bool Session::IsAsked(const vtq::Plugin& plugin, const std::string& className) const {
  const auto server = servers_.find(className);
  return server == servers_.end() || server->second == plugin.GetFile();
}

void Session::Ask(vtq::Plugin& plugin, const std::string& className) {
  const auto failure = FailureOf([&] {
    std::vector<std::shared_ptr<NQZMVTQ20::ICIMClass>> request = {repository_->Find(className)};
    plugin.GetData(repository_, request);
  });
  if (failure) report_.AddFailure(*failure);
}

std::vector<std::string> Session::EndPlugins() {
  while (!manager_->GetPlugins().empty()) {
    vtq::Plugin& plugin = *manager_->GetPlugins().back();
    const auto failure = FailureOf([&plugin] { plugin.DeInit(); });
    if (failure) report_.AddFailure(plugin.GetFile() + ": " + *failure);
    manager_->End(plugin);
  }
  return manager_->GetViolations();
}

std::string Session::GetSystemName() const {
  return NQZMVTQ20::TCIMSchemaHelper::GetSystemName(repository_);
}

std::optional<std::string> Session::GetLogFailure() const {
  if (!logger_->GetFailure()) return std::nullopt;
  try {
    std::rethrow_exception(logger_->GetFailure());
  } catch (const std::exception& failure) {
    return failure.what();
  }
}

}  // namespace pciinfo
