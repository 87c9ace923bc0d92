// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/host/run_program.h"

/// How pciinfo is run on a new terminal.
struct TerminalRun {
  std::vector<std::string> arguments;
  std::map<std::string, std::string> environment = {};  ///< besides TERM, LANG and PATH
  unsigned short columns = 80;
  std::string keys = {};  ///< typed after the first output
};

/// Runs pciinfo with a terminal for all three standard streams. `out` is its output, with the line
/// ends of terminals.
RunResult RunOnTerminal(const TerminalRun& run);
