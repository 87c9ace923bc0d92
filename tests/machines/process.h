#pragma once

#include <string>
#include <vector>

/// How a program ended.
struct Finished {
  int status = -1;  ///< exit status, 128 + signal number for a program that a signal ended
  std::string out;
  std::string err;
};

/// Runs a program of the system's directories, in the C locale and with an empty standard input,
/// and waits for its end. Throws std::runtime_error when it cannot be run.
Finished RunToEnd(const std::vector<std::string>& words);

/// Returns the lines of a text, without line ends and without text after the last line end.
std::vector<std::string> LinesOf(const std::string& text);
