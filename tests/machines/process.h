#pragma once

#include <string>
#include <vector>

/// How a program ended.
struct Finished {
  int status = -1;  ///< exit status, 128 + signal number for a program that a signal ended
  std::string out;
  std::string err;
};

/// Runs a program, found in the system's folders, in the C locale and with an empty standard input,
/// and waits for its end. Throws std::runtime_error when that cannot be done.
Finished RunToEnd(const std::vector<std::string>& words);

/// The lines of a text, without their ends; what stands behind the last line end is left out.
std::vector<std::string> LinesOf(const std::string& text);
