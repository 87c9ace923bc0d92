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
/// fails a collection.
class VTQ_EXPORT Logger final : public NQZMVTQ20::ILogger {
 public:
  void AddSink(LogSink sink);
  void Write(EVTQLogSeverity severity, const std::string& text) noexcept override;

 private:
  std::vector<LogSink> sinks_;
};

/// A sink that writes every record to `path`, one a line: the severity's digit, a blank, the text
/// (tabs kept, line feeds replaced by blanks). The file is created or emptied first. Every record
/// is in the file when the call returns, and several processes may write to one file. Throws
/// TVTQException when it cannot be opened.
VTQ_EXPORT LogSink MakeFileSink(const std::string& path);

}  // namespace vtq
