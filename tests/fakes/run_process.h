// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

/// How a process ended and what it printed.
struct RunResult {
  int status = -1;  ///< exit status, 128 + signal number for a process that a signal ended
  std::string out;
  std::string err;
  pid_t process = 0;  ///< its id, which is free again
};

/// Runs a program from PATH, with more environment variables than this process has, and waits for
/// its end. Standard input is empty. The status is 127 if the program cannot be started.
RunResult RunProcess(const std::vector<std::string>& words,
                     const std::map<std::string, std::string>& environment = {});

/// Calls `body` in a child process with an empty standard input and waits for its end. The exit
/// status is what `body` returns; the child runs no exit handlers.
RunResult RunInChild(const std::function<int()>& body);

/// Replaces this process by a program from PATH. Returns 127 if the program cannot be started.
/// Restores the default actions of the signals that end programs, because a shell that runs the
/// tests in the background may ignore them.
int Execute(const std::vector<std::string>& words);

/// Returns the lines of a text, without line ends.
std::vector<std::string> LinesOf(const std::string& text);
