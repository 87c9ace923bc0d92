#include "tests/machines/process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "tests/fakes/captured_output.h"

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

// Waits for the end of a program and removes its link.
int WaitFor(pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child) throw std::runtime_error("waitpid failed");
  fs::remove(fs::path("/proc") / std::to_string(child));
  return status;
}

[[noreturn]] void Execute(const std::vector<std::string>& words, int out, int err) {
  LinkIntoProc();
  dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  // The leak checker reads /proc, but the test's /proc lacks the processes that the program forks.
  setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
  setenv("LC_ALL", "C", 1);
  setenv("PATH", "/usr/sbin:/usr/bin:/sbin:/bin", 1);
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments.front(), arguments.data());
  _exit(127);
}

pid_t Start(const std::vector<std::string>& words, const CapturedOutput& out,
            const CapturedOutput& err) {
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) Execute(words, out.Descriptor(), err.Descriptor());
  return child;
}

}  // namespace

Finished RunToEnd(const std::vector<std::string>& words) {
  const CapturedOutput out;
  const CapturedOutput err;
  const pid_t child = Start(words, out, err);
  const int status = WaitFor(child);
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  if (code == 127) throw std::runtime_error("cannot run " + words.front());
  return {code, out.Text(), err.Text()};
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
    lines.push_back(text.substr(start, end - start));
  }
  return lines;
}
