// SPDX-License-Identifier: Apache-2.0
#include "tests/fakes/run_process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

#include "tests/fakes/captured_output.h"

RunResult RunProcess(const std::vector<std::string>& words,
                     const std::map<std::string, std::string>& environment) {
  return RunInChild([&] {
    for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
    return Execute(words);
  });
}

RunResult RunInChild(const std::function<int()>& body) {
  const CapturedOutput out;
  const CapturedOutput err;
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) {
    dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    dup2(out.Descriptor(), STDOUT_FILENO);
    dup2(err.Descriptor(), STDERR_FILENO);
    _exit(body());
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child) throw std::runtime_error("waitpid failed");
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return {code, out.Text(), err.Text(), child};
}

int Execute(const std::vector<std::string>& words) {
  constexpr int kCannotRun = 127;
  for (const int signal : {SIGHUP, SIGINT, SIGPIPE, SIGTERM}) std::signal(signal, SIG_DFL);
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments.front(), arguments.data());
  return kCannotRun;
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}
