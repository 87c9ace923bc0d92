// SPDX-License-Identifier: Apache-2.0
#include "runtime/command_replay.h"

#include <sys/stat.h>

#include <utility>

#include "framework/exception.h"
#include "runtime/files.h"
#include "runtime/service_failures.h"

namespace vtq {

namespace {

std::string recordings;

std::string PathOf(const std::string& command) { return recordings + '/' + command; }

bool IsFileName(const std::string& text) {
  return !text.empty() && text != "." && text != ".." &&
         text.find_first_of(std::string("/\0", 2)) == std::string::npos;
}

// Links are not followed, because they could point outside the directory.
bool IsRegularFile(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool IsRecorded(const std::string& command) {
  return !recordings.empty() && IsFileName(command) && IsRegularFile(PathOf(command));
}

}  // namespace

void ReplayCommandsFrom(std::string directory) { recordings = std::move(directory); }

std::optional<std::string> RecordedOutput(const std::string& command) {
  if (!IsRecorded(command)) return std::nullopt;
  try {
    return ReadFile(PathOf(command));
  } catch (const NQZMVTQ20::TVTQException& failure) {
    FailService("cannot read the recorded output of \"" + command + "\": " + failure.what(),
                failure.GetStatusCode());
  }
}

}  // namespace vtq
