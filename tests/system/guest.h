#pragma once

#include <map>
#include <string>

#include "tests/system/machine.h"

/// What a program said inside of a machine, and how it ended there.
struct Answer {
  int status = -1;  ///< exit status
  std::string out;
  std::string err;
};

/// Boots the machine, lets the script `init` run to its end in it, and returns what the programs
/// answered, by the names that the script gives them. Everything that was made for the machine, its
/// console and its answers are left in the build folder, in a folder named like the machine. Throws
/// std::runtime_error with the last lines of the console when the machine does not answer in time.
std::map<std::string, Answer> Boot(const SystemMachine& machine);

/// Gives a shell in the machine on this terminal, in the place of this process.
[[noreturn]] void GiveShell(const SystemMachine& machine);
