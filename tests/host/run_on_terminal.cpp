// SPDX-License-Identifier: Apache-2.0
#include "tests/host/run_on_terminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace {

[[noreturn]] void Become(const TerminalRun& run) {
  clearenv();
  setenv("PATH", "/usr/bin:/bin", 1);
  setenv("TERM", "xterm", 1);
  setenv("LANG", "C.UTF-8", 1);
  for (const auto& [name, value] : run.environment) setenv(name.c_str(), value.c_str(), 1);
  std::vector<std::string> words = {PCIINFO_PROGRAM};
  words.insert(words.end(), run.arguments.begin(), run.arguments.end());
  _exit(Execute(words));
}

/// Reads until the terminal is closed, or for half a minute without output.
std::string ReadAll(int terminal, const std::string& keys) {
  constexpr int kPatience = 30000;
  std::string text;
  std::array<char, 4096> piece{};
  pollfd watched{terminal, POLLIN, 0};
  bool typed = keys.empty();
  while (poll(&watched, 1, kPatience) == 1) {
    const ssize_t size = read(terminal, piece.data(), piece.size());
    if (size <= 0) break;
    text.append(piece.data(), static_cast<std::size_t>(size));
    if (!typed) typed = write(terminal, keys.data(), keys.size()) > 0;
  }
  return text;
}

}  // namespace

RunResult RunOnTerminal(const TerminalRun& run) {
  int terminal = -1;
  const winsize size{24, run.columns, 0, 0};
  const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
  if (child < 0) throw std::runtime_error("there is no terminal to be had");
  if (child == 0) Become(run);
  RunResult result;
  result.out = ReadAll(terminal, run.keys);
  int status = 0;
  waitpid(child, &status, 0);
  close(terminal);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}
