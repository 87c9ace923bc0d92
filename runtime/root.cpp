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

}  // namespace

namespace vtq {

void SetCoreLogger(std::shared_ptr<ILogger> logger) {
  tellingLogger = dynamic_cast<const Logger*>(logger.get());
  coreLogger = std::move(logger);
}

bool CoreLoggerDrops(int severity) noexcept {
  if (tellingLogger == nullptr) return coreLogger == nullptr;
  return !tellingLogger->Takes(static_cast<ILogger::EVTQLogSeverity>(severity));
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

}  // namespace NQZMVTQ20
