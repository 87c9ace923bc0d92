// SPDX-License-Identifier: Apache-2.0
#include "tests/machines/process.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;

// The test's /proc contains only the processes that existed when it was made. A program built with
// a sanitizer reads its own entry there, so each program that is run first makes a link for itself
// to the real /proc.
void LinkIntoProc() {
  const fs::path realProc = fs::read_symlink("/proc/self").parent_path();
  const std::string name = std::to_string(getpid());
  std::error_code ignored;
  fs::create_symlink(realProc / name, fs::path("/proc") / name, ignored);
}

}  // namespace

RunResult RunToEnd(const std::vector<std::string>& words) {
  const RunResult result = RunInChild([&] {
    LinkIntoProc();
    // The leak checker reads /proc, but the test's /proc lacks the processes that the program
    // forks.
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    setenv("LC_ALL", "C", 1);
    setenv("PATH", "/usr/sbin:/usr/bin:/sbin:/bin", 1);
    return Execute(words);
  });
  fs::remove(fs::path("/proc") / std::to_string(result.process));
  if (result.status == 127) throw std::runtime_error("cannot run " + words.front());
  return result;
}
