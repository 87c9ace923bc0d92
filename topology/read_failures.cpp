// SPDX-License-Identifier: Apache-2.0
#include "topology/read_failures.h"

#include <cstring>
#include <map>

#include "framework/logger.h"

namespace topology {
namespace {

struct ReadFailure {
  std::string firstFile;
  std::size_t files = 0;
};

std::map<int, ReadFailure>& Failures() {
  static std::map<int, ReadFailure> failures;
  return failures;
}

}  // namespace

void NoteReadFailure(const std::string& file, int error) {
  ReadFailure& failure = Failures()[error];
  if (failure.files++ == 0) failure.firstFile = file;
}

void LogReadFailures() {
  for (const auto& [error, failure] : Failures()) {
    std::string record = failure.firstFile + " could not be read: " + std::strerror(error);
    if (failure.files > 1) {
      record += " (and " + std::to_string(failure.files - 1) + " more for this reason)";
    }
    NQZMVTQ20::fdrWriteLog(NQZMVTQ20::ILogger::kStatus, record.c_str());
  }
  Failures().clear();
}

}  // namespace topology
