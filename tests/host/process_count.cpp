// SPDX-License-Identifier: Apache-2.0
#include "tests/host/process_count.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>

#include "runtime/file_descriptor.h"
#include "tests/fakes/run_process.h"

namespace {

vtq::FileDescriptor OpenTerminal() {
  vtq::FileDescriptor terminal(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (grantpt(terminal.Get()) != 0 || unlockpt(terminal.Get()) != 0) {
    throw std::runtime_error("there is no terminal to be had");
  }
  return terminal;
}

[[noreturn]] void Become(const std::vector<std::string>& words, const std::string& pager,
                         const std::string& output) {
  const int stream = open(output.c_str(), O_RDWR | O_NOCTTY);
  dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
  dup2(stream, STDOUT_FILENO);
  dup2(stream, STDERR_FILENO);
  if (!pager.empty()) setenv("PCIINFO_PAGER", pager.c_str(), 1);
  ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
  raise(SIGSTOP);  // until the other process has said what it wants to hear of
  _exit(Execute(words));
}

/// The command line of a process, with a blank between its words and the program without its
/// directory.
std::string CommandOf(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/cmdline");
  std::string word;
  std::getline(file, word, '\0');
  std::string command = std::filesystem::path(word).filename();
  while (std::getline(file, word, '\0')) command += " " + word;
  return command;
}

/// Whether this is a thread of a process and not its first.
bool IsThread(pid_t task) {
  std::ifstream file("/proc/" + std::to_string(task) + "/status");
  std::string word;
  pid_t process = task;
  while (file >> word && word != "Tgid:") continue;
  file >> process;
  return process != task;
}

/// Follows a program by the kernel's means for debuggers, which miss no process.
class Trace final {
 public:
  explicit Trace(pid_t first) : first_(first) {
    waitpid(first, nullptr, 0);
    constexpr long kEvents = PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE |
                             PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL;
    if (ptrace(PTRACE_SETOPTIONS, first, nullptr, kEvents) != 0) {
      throw std::runtime_error("a program cannot be traced here");
    }
    ptrace(PTRACE_CONT, first, nullptr, nullptr);
  }

  std::vector<std::string> Run() {
    int status = 0;
    for (pid_t process = 0; (process = waitpid(-1, &status, __WALL)) > 0;) {
      if (WIFSTOPPED(status)) GoOn(process, status);
    }
    std::vector<std::string> commands;
    for (const auto& [process, command] : commands_) commands.push_back(command);
    return commands;
  }

 private:
  void GoOn(pid_t process, int status) {
    if (process != first_ && !IsThread(process)) commands_.try_emplace(process);
    const int event = status >> 16;
    if (event == PTRACE_EVENT_EXEC && process != first_) commands_[process] = CommandOf(process);
    const int signal = WSTOPSIG(status);
    // A process that is new begins stopped; stops for events are no signals.
    const bool isSignal = event == 0 && signal != SIGSTOP && signal != SIGTRAP;
    ptrace(PTRACE_CONT, process, nullptr, isSignal ? signal : 0);
  }

  pid_t first_;
  std::map<pid_t, std::string> commands_;  // in the order of their numbers
};

}  // namespace

std::vector<std::string> ProgramsStartedBy(const std::vector<std::string>& words,
                                           const std::string& pager) {
  const vtq::FileDescriptor terminal = OpenTerminal();
  const std::string output = pager.empty() ? "/dev/null" : ptsname(terminal.Get());
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) Become(words, pager, output);
  return Trace(child).Run();
}
