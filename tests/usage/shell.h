// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/fakes/run_process.h"

/// Runs a shell command. Both outputs are in `out`, in the order in which they were written.
inline RunResult RunShell(const std::string& commandLine) {
  return RunProcess({"/bin/sh", "-c", "{ " + commandLine + "\n} 2>&1"});
}

/// Skips a test that needs a program which is not installed; ./check installs all of them.
#define NEEDS(program)                                   \
  if (RunShell("command -v " program).status != 0) {     \
    GTEST_SKIP() << program << " is not installed here"; \
  }
