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

// The manager is declared last, so that it goes first: what it unloads may still write to the log.
std::shared_ptr<ILogger> coreLogger;
// The same, where it is of the kind that tells what it drops.
const vtq::Logger* tellingLogger = nullptr;
std::shared_ptr<ICIMNamespace> pluginManager;

// As far as is known without asking the logger.
bool IsDropped(ILogger::EVTQLogSeverity severity) {
  if (tellingLogger == nullptr) return coreLogger == nullptr;
  return !tellingLogger->Takes(severity);
}

// Apart from its caller, which then needs no room for the text: most records are dropped.
[[gnu::noinline]] void WriteToCore(ILogger::EVTQLogSeverity severity, const char* text) noexcept {
  try {
    NQZMVTQ20::TRootObject::GetCoreLogger()->Write(severity, text);
  } catch (...) {
    // Not enough memory for the text: logging never fails its caller.
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
