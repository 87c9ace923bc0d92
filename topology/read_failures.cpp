// SPDX-License-Identifier: Apache-2.0
#include "topology/read_failures.h"

#include <cstring>
#include <map>
#include <mutex>

#include "framework/logger.h"

namespace topology {
namespace {

struct ReadFailure {
  std::string firstFile;
  std::size_t files = 0;
};

struct Failures {
  std::mutex mutex;
  std::map<int, ReadFailure> byError;
};

Failures& Noted() {
  static Failures failures;
  return failures;
}

}  // namespace

void NoteReadFailure(const std::string& file, int error) {
  Failures& noted = Noted();
  const std::lock_guard lock(noted.mutex);
  ReadFailure& failure = noted.byError[error];
  ++failure.files;
  // Threads note in any order; the log is to be the same each time.
  if (failure.files == 1 || file < failure.firstFile) failure.firstFile = file;
}

void LogReadFailures() {
  Failures& noted = Noted();
  const std::lock_guard lock(noted.mutex);
  for (const auto& [error, failure] : noted.byError) {
    std::string record = failure.firstFile + " could not be read: " + std::strerror(error);
    if (failure.files > 1) {
      record += " (and " + std::to_string(failure.files - 1) + " more for this reason)";
    }
    NQZMVTQ20::fdrWriteLog(NQZMVTQ20::ILogger::kStatus, record.c_str());
  }
  noted.byError.clear();
}

}  // namespace topology
