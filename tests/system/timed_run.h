#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

/// Runs a program, found in PATH, with an empty standard input and both outputs into the file
/// `log`, and waits for its end. It is killed when the time is up, and when this process ends.
/// Returns its exit status. Throws std::runtime_error when it was killed or could not be run.
int RunWithin(std::chrono::seconds time, const std::vector<std::string>& words,
              const std::filesystem::path& log);

/// Puts a program, found in PATH, into the place of this process. Throws std::runtime_error when
/// that cannot be done.
[[noreturn]] void Become(const std::vector<std::string>& words);
