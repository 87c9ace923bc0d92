// SPDX-License-Identifier: Apache-2.0
#include "host/collect/stderr_log.h"

#include <fmt/format.h>

#include "host/console/output.h"
#include "host/console/text.h"

namespace pciinfo {

using NQZMVTQ20::ILogger;

vtq::LogSink MakeStderrSink(std::optional<int> level, const TroubleReport& report) {
  return [level, &report](ILogger::EVTQLogSeverity severity, const std::string& text) {
    if (!level && report.IsCollecting()) return;
    if (severity > level.value_or(ILogger::kWarning)) return;
    WriteErrorLine(fmt::format("{} {}", static_cast<int>(severity), Printable(text)));
  };
}

}  // namespace pciinfo
