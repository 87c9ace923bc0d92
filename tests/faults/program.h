#pragma once

#include <string>
#include <vector>

#include "tests/faults/fault_plan.h"

/// How the program ended, and what it printed.
struct ProgramEnd {
  int status = -1;
  std::string out;
  std::string err;
};

/// Runs the program, the command line `words` behind its name, in a process of its own, where
/// `fault` strikes.
ProgramEnd RunProgram(const std::vector<std::string>& words, const Fault& fault);
