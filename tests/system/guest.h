// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "tests/system/machine.h"

/// The output and the exit status of a program inside a machine.
struct Answer {
  int status = -1;  ///< exit status
  std::string out;
  std::string err;
};

/// Boots the machine, waits for the end of the script `init`, and returns the output of the
/// programs, by the names in the script. Leaves the machine's files, its console and the output in
/// the build directory, in a directory with the machine's name. Throws std::runtime_error with the
/// last lines of the console when the machine does not end in time.
std::map<std::string, Answer> Boot(const SystemMachine& machine);

/// Replaces this process by a shell in the machine, on this terminal.
[[noreturn]] void GiveShell(const SystemMachine& machine);
