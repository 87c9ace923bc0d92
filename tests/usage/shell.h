#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

/// The exit status and the output of a shell command.
struct ShellResult {
  int status = -1;
  std::string text;
};

inline ShellResult RunShell(const std::string& commandLine) {
  ShellResult result;
  std::FILE* pipe = popen(("{ " + commandLine + "\n} 2>&1").c_str(), "r");
  std::array<char, 4096> part;
  while (std::fgets(part.data(), static_cast<int>(part.size()), pipe) != nullptr) {
    result.text += part.data();
  }
  result.status = pclose(pipe);
  return result;
}

/// Skips a test that needs a program which is not installed; ./check installs all of them.
#define NEEDS(program)                                   \
  if (RunShell("command -v " program).status != 0) {     \
    GTEST_SKIP() << program << " is not installed here"; \
  }
