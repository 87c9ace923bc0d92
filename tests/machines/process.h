// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/fakes/run_process.h"

/// Runs a program of the system's directories, in the C locale and with an empty standard input,
/// and waits for its end. Throws std::runtime_error when it cannot be run.
RunResult RunToEnd(const std::vector<std::string>& words);
