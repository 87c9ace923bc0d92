// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "framework/logger.h"

namespace vtq {

/// Receives the records of a logger, in the order in which they are written.
using LogSink =
    std::function<void(NQZMVTQ20::ILogger::EVTQLogSeverity severity, const std::string& text)>;

/// A logger that passes each record to all its sinks. Exceptions of a sink do not reach the caller,
/// so that logging cannot fail a collection. Plug-ins write hundreds of thousands of records that
/// no sink takes; dropping these is cheap.
class VTQ_EXPORT Logger final : public NQZMVTQ20::ILogger {
 public:
  /// Adds a sink for records up to the severity `highest`.
  void AddSink(LogSink sink, EVTQLogSeverity highest = kVerbose);
  /// Whether any sink takes records of that severity.
  bool Takes(EVTQLogSeverity severity) const noexcept { return severity <= highest_; }
  void Write(EVTQLogSeverity severity, const std::string& text) noexcept override;
  /// Returns the first exception of a sink; null if there was none.
  const std::exception_ptr& GetFailure() const noexcept { return failure_; }

 private:
  struct Outlet {
    LogSink sink;
    EVTQLogSeverity highest;
  };

  std::vector<Outlet> outlets_;
  int highest_ = kError - 1;  ///< of all sinks
  std::exception_ptr failure_;
};

/// Returns a sink that writes every record to `path`, one per line: the digit of the severity, a
/// space, the text (tabs kept, line feeds replaced by spaces). The file is emptied first, or
/// created so that only its owner may read it, as records hold what the kernel shows to root only;
/// a symbolic link is not followed. Records are not buffered, and several processes may write to
/// one file. Throws TVTQException when the file cannot be opened; the sink does when it cannot be
/// written.
VTQ_EXPORT LogSink MakeFileSink(const std::string& path);

}  // namespace vtq
