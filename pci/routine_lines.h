// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

/// The log lines around a routine of TPciDevInfo. A routine that runs for every function keeps them
/// in a static object, because building them each time costs more than most of these routines do.
struct RoutineLines {
  explicit RoutineLines(const std::string& routine)
      : entering("Entering TPciDevInfo::" + routine + " routine"),
        exiting("Exiting TPciDevInfo::" + routine + " routine") {}

  std::string entering;
  std::string exiting;
};
