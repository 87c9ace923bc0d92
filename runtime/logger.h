#pragma once

#include <functional>
#include <string>
#include <vector>

#include "framework/logger.h"

namespace vtq {

/// Receives every record of a logger, in the order in which they are written.
using LogSink =
    std::function<void(NQZMVTQ20::ILogger::EVTQLogSeverity severity, const std::string& text)>;

/// A logger that hands each record to all its sinks. What a sink throws is dropped: logging never
/// fails a collection. Plug-ins write hundreds of thousands of records that nobody reads, so a
/// record that no sink takes costs next to nothing.
class VTQ_EXPORT Logger final : public NQZMVTQ20::ILogger {
 public:
  /// The sink gets the records up to that severity.
  void AddSink(LogSink sink, EVTQLogSeverity highest = kVerbose);
  /// Whether a sink gets records of that severity.
  bool Takes(EVTQLogSeverity severity) const noexcept { return severity <= highest_; }
  void Write(EVTQLogSeverity severity, const std::string& text) noexcept override;

 private:
  struct Outlet {
    LogSink sink;
    EVTQLogSeverity highest;
  };

  std::vector<Outlet> outlets_;
  int highest_ = kError - 1;  ///< of all outlets
};

/// A sink that writes every record to `path`, one a line: the severity's digit, a blank, the text
/// (tabs kept, line feeds replaced by blanks). The file is created or emptied first; a symbolic
/// link is not followed. Every record is in the file when the call returns, and several processes
/// may write to one file. Throws TVTQException when it cannot be opened.
VTQ_EXPORT LogSink MakeFileSink(const std::string& path);

}  // namespace vtq
