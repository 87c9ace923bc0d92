// SPDX-License-Identifier: Apache-2.0
#include "tests/system/timed_run.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kCannotRun = 127;

void Execute(const std::vector<std::string>& words) {
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments.front(), arguments.data());
}

[[noreturn]] void RunAsChild(pid_t parent, const std::vector<std::string>& words, const char* log) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(kCannotRun);  // the parent ended before prctl
  const int output = open(log, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  Execute(words);
  _exit(kCannotRun);
}

int WaitUntil(Clock::time_point end, pid_t child, const std::function<void()>& meanwhile) {
  int status = 0;
  while (waitpid(child, &status, WNOHANG) == 0) {
    if (Clock::now() > end) kill(child, SIGKILL);
    meanwhile();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return status;
}

}  // namespace

int RunWithin(std::chrono::seconds time, const std::vector<std::string>& words,
              const std::filesystem::path& log, const std::function<void()>& meanwhile) {
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) RunAsChild(parent, words, log.c_str());
  const int status = WaitUntil(Clock::now() + time, child, meanwhile);
  if (WIFSIGNALED(status)) {
    throw std::runtime_error(words.front() + " was ended by signal " +
                             std::to_string(WTERMSIG(status)) + "; it has " +
                             std::to_string(time.count()) + " seconds");
  }
  if (WEXITSTATUS(status) == kCannotRun) throw std::runtime_error("cannot run " + words.front());
  return WEXITSTATUS(status);
}

void Become(const std::vector<std::string>& words) {
  Execute(words);
  throw std::runtime_error("cannot run " + words.front());
}
