// SPDX-License-Identifier: Apache-2.0
#include "topology/whole_file.h"

#include "framework/exception.h"
#include "framework/logger.h"
#include "framework/os_specific.h"

namespace topology {

std::optional<std::string> ReadWhole(const std::string& path) {
  try {
    return NQZMVTQ20::TOSSpecific::CaptureFile(path);
  } catch (const NQZMVTQ20::TVTQException& failure) {
    NQZMVTQ20::fdrWriteLog(NQZMVTQ20::ILogger::kStatus, failure.what());
    return std::nullopt;
  }
}

}  // namespace topology
