// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "tests/faults/fault_plan.h"

/// The exit status and the output of the program.
struct ProgramEnd {
  int status = -1;
  std::string out;
  std::string err;
};

/// Runs the program with the arguments `words` in a child process in which `fault` occurs.
ProgramEnd RunProgram(const std::vector<std::string>& words, const Fault& fault);
