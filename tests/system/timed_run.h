// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// Runs a program from PATH with an empty standard input, writes both outputs to the file `log`,
/// and waits for its end; calls `meanwhile` now and then until then. Kills it after the time limit
/// and when this process ends. Returns its exit status. Throws std::runtime_error when it was
/// killed or could not be run.
int RunWithin(
    std::chrono::seconds time, const std::vector<std::string>& words,
    const std::filesystem::path& log, const std::function<void()>& meanwhile = [] {});

/// Replaces this process by a program from PATH (exec). Throws std::runtime_error on failure.
[[noreturn]] void Become(const std::vector<std::string>& words);
