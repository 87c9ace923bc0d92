// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "framework/export.h"

namespace NQZMVTQ20 {

/// The framework's log. Owned by the framework; all calls come on one thread.
class ILogger {
 public:
  enum EVTQLogSeverity : int {
    kError = 0,
    kWarning = 1,
    kStatus = 2,
    kDebug = 3,
    kVerbose = 4,
  };

  virtual ~ILogger() = default;

  /// Writes one record; severity and text are kept exactly. Never throws.
  virtual void Write(EVTQLogSeverity severity, const std::string& text) noexcept = 0;
};

/// Writes one record to the core logger, for code without a collector. `severity` is a number of
/// ILogger::EVTQLogSeverity, `text` a zero-terminated text (copied; null writes nothing). Never
/// throws.
VTQ_EXPORT void fdrWriteLog(int severity, const char* text) noexcept;

}  // namespace NQZMVTQ20
