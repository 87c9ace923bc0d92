// SPDX-License-Identifier: Apache-2.0
#include "runtime/logger.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

#include "framework/exception.h"
#include "runtime/file_descriptor.h"

namespace vtq {

namespace {

/// Returns 0, or the error.
int WriteAll(int descriptor, const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = ::write(descriptor, text.data() + written, text.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    written += static_cast<std::size_t>(count);
  }
  return 0;
}

std::string RecordLine(NQZMVTQ20::ILogger::EVTQLogSeverity severity, const std::string& text) {
  std::string line = std::to_string(static_cast<int>(severity)) + ' ' + text;
  std::replace(line.begin(), line.end(), '\n', ' ');
  return line += '\n';
}

}  // namespace

void Logger::AddSink(LogSink sink, EVTQLogSeverity highest) {
  outlets_.push_back({std::move(sink), highest});
  highest_ = std::max<int>(highest_, highest);
}

void Logger::Write(EVTQLogSeverity severity, const std::string& text) noexcept {
  if (!Takes(severity)) return;
  for (const Outlet& outlet : outlets_) {
    if (severity > outlet.highest) continue;
    try {
      outlet.sink(severity, text);
    } catch (...) {
      if (!failure_) failure_ = std::current_exception();
    }
  }
}

LogSink MakeFileSink(const std::string& path) {
  // Somebody else may have made a link here to overwrite a file of this user, or a pipe that nobody
  // reads, where opening would wait.
  constexpr int kFlags =
      O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  constexpr mode_t kMode = 0600;
  auto file = std::make_shared<FileDescriptor>(::open(path.c_str(), kFlags, kMode));
  if (!file->IsOpen()) {
    const char* const why = errno == ELOOP
                                ? "it is a symbolic link; name the file that it points to"
                                : std::strerror(errno);
    throw NQZMVTQ20::TVTQException("cannot open the log file " + path + ": " + why);
  }
  ::fcntl(file->Get(), F_SETFL, O_APPEND);  // records wait for the reader of a pipe
  return [file, path](NQZMVTQ20::ILogger::EVTQLogSeverity severity, const std::string& text) {
    const int error = WriteAll(file->Get(), RecordLine(severity, text));
    if (error == 0) return;
    throw NQZMVTQ20::TVTQException("cannot write the log file " + path + ": " +
                                   std::strerror(error));
  };
}

}  // namespace vtq
