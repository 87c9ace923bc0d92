// SPDX-License-Identifier: Apache-2.0
#include "runtime/root.h"

#include <utility>

#include "framework/cim_namespace.h"
#include "framework/logger.h"
#include "framework/root_object.h"
#include "runtime/logger.h"

namespace {

using NQZMVTQ20::ICIMNamespace;
using NQZMVTQ20::ILogger;

class SilentLogger final : public ILogger {
 public:
  void Write(EVTQLogSeverity, const std::string&) noexcept override {}
};

// The manager is declared last, so that it is destroyed first: plug-ins that it unloads may still
// write to the log.
std::shared_ptr<ILogger> coreLogger;
// The core logger, if it is a vtq::Logger, which tells what it drops; else null.
const vtq::Logger* tellingLogger = nullptr;
std::shared_ptr<ICIMNamespace> pluginManager;

// Whether the record is known to be dropped, without a virtual call.
bool IsDropped(ILogger::EVTQLogSeverity severity) {
  if (tellingLogger == nullptr) return coreLogger == nullptr;
  return !tellingLogger->Takes(severity);
}

// Not inlined, so that the caller needs no stack space for the text: most records are dropped.
[[gnu::noinline]] void WriteToCore(ILogger::EVTQLogSeverity severity, const char* text) noexcept {
  try {
    NQZMVTQ20::TRootObject::GetCoreLogger()->Write(severity, text);
  } catch (...) {
    // Not enough memory for the text: the record is dropped, because logging must not fail its
    // caller.
  }
}

}  // namespace

namespace vtq {

void SetCoreLogger(std::shared_ptr<ILogger> logger) {
  tellingLogger = dynamic_cast<const Logger*>(logger.get());
  coreLogger = std::move(logger);
}

void SetPluginManager(std::shared_ptr<ICIMNamespace> manager) {
  pluginManager = std::move(manager);
}

}  // namespace vtq

namespace NQZMVTQ20 {

std::shared_ptr<ILogger> TRootObject::GetCoreLogger() {
  return coreLogger ? coreLogger : std::make_shared<SilentLogger>();
}

std::shared_ptr<ICIMNamespace> TRootObject::GetPluginManager() { return pluginManager; }

void fdrWriteLog(int number, const char* text) noexcept {
  const auto severity = static_cast<ILogger::EVTQLogSeverity>(number);
  if (text != nullptr && !IsDropped(severity)) WriteToCore(severity, text);
}

}  // namespace NQZMVTQ20
