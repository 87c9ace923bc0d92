#include "tests/host/run_program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <initializer_list>
#include <sstream>
#include <stdexcept>

#include "tests/fakes/captured_output.h"

namespace {

/// The leak checker reads /proc, but the /proc of a capture lacks the processes that the program
/// forks.
void LeaveOutLeaks(const std::vector<std::string>& words) {
  const bool isCapture = std::any_of(words.begin(), words.end(), [](const std::string& word) {
    return word.find("--root") != std::string::npos;
  });
  if (isCapture) setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
}

[[noreturn]] void Become(const std::vector<std::string>& words, int out, int err) {
  dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  HearSignals();
  LeaveOutLeaks(words);
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execv(arguments.front(), arguments.data());
  _exit(127);
}

int WaitFor(pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child) throw std::runtime_error("waitpid failed");
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

void HearSignals() {
  for (const int signal : {SIGHUP, SIGINT, SIGPIPE, SIGTERM}) std::signal(signal, SIG_DFL);
}

RunResult RunProgram(const std::string& program, const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const CapturedOutput out;
  const CapturedOutput err;
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) Become(words, out.Descriptor(), err.Descriptor());
  const int status = WaitFor(child);
  return {status, out.Text(), err.Text()};
}

RunResult RunPciinfo(const std::vector<std::string>& arguments) {
  return RunProgram(PCIINFO_PROGRAM, arguments);
}

RunResult RunFake(const std::string& plugin, std::vector<std::string> arguments) {
  arguments.insert(arguments.end(), {"--only-plugin", FakePluginFile(plugin)});
  return RunPciinfo(arguments);
}

RunResult RunShell(const std::string& commandLine) {
  setenv("PCIINFO", PCIINFO_PROGRAM, 1);
  setenv("PLUGINS", FAKE_PLUGINS, 1);
  return RunProgram("/bin/bash", {"-c", commandLine});
}

std::string FakePluginFile(const std::string& plugin) { return FAKE_PLUGINS + plugin + ".pi.so"; }

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}
