// SPDX-License-Identifier: Apache-2.0
#include "runtime/child_process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "runtime/command_line.h"

namespace vtq {

namespace {

constexpr int kNotStarted = 127;  // what a shell answers for a program that it cannot start

void Check(int error) {
  if (error != 0) throw std::system_error(error, std::generic_category());
}

/// No handler of this process runs in the new one, which shares its memory for a moment.
class AllSignalsBlocked final {
 public:
  AllSignalsBlocked() noexcept {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  AllSignalsBlocked(const AllSignalsBlocked&) = delete;
  AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;
  ~AllSignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

std::vector<char*> PointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

struct Program {
  const char* file = nullptr;
  char* const* arguments = nullptr;
  char* const* environment = nullptr;
  int output = -1;
  int errors = -1;
  pid_t parent = 0;
  rlim_t descriptors = 0;  ///< all of this process have lower numbers
  volatile int error = 0;  ///< why the program could not be started
};

bool SetStreams(const Program& program) noexcept {
  const int input = ::open("/dev/null", O_RDONLY);
  if (input < 0 || ::dup2(input, STDIN_FILENO) < 0) return false;
  return ::dup2(program.output, STDOUT_FILENO) >= 0 && ::dup2(program.errors, STDERR_FILENO) >= 0;
}

void CloseOtherDescriptors(const Program& program) noexcept {
  if (::close_range(STDERR_FILENO + 1, ~0U, 0) == 0) return;
  // Linux before 5.9 does not have that call.
  for (rlim_t other = STDERR_FILENO + 1; other < program.descriptors; ++other) {
    ::close(static_cast<int>(other));
  }
}

/// Each signal at its default, and none blocked.
void ResetSignals() noexcept {
  struct sigaction usual {};
  usual.sa_handler = SIG_DFL;
  for (int signal = 1; signal < NSIG; ++signal) ::sigaction(signal, &usual, nullptr);
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// In the new process, which shares the memory of its parent: it makes system calls only.
[[noreturn]] void Become(Program& program) noexcept {
  // The program ends when the thread that started it does, however that ends.
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != program.parent) ::_exit(kNotStarted);  // it ended before the call above
  ::setpgid(0, 0);
  if (SetStreams(program)) {
    CloseOtherDescriptors(program);
    ResetSignals();
    ::execve(program.file, program.arguments, program.environment);
  }
  program.error = errno;
  ::_exit(kNotStarted);
}

rlim_t DescriptorLimit() noexcept {
  rlimit limit{};
  return ::getrlimit(RLIMIT_NOFILE, &limit) == 0 ? limit.rlim_cur : 0;
}

/// vfork takes no longer for a process with much memory, which fork does. posix_spawn uses it as
/// well, but cannot bind the life of the program to this process.
pid_t Start(Program& program) {
  const AllSignalsBlocked blocked;
  const pid_t leader = ::vfork();    // NOLINT(clang-analyzer-security.insecureAPI.vfork)
  if (leader == 0) Become(program);  // NOLINT(clang-analyzer-unix.Vfork)
  if (leader < 0) Check(errno);
  return leader;
}

pid_t Spawn(const std::string& file, std::vector<std::string>& arguments, int output, int errors) {
  std::vector<std::string> environment = {std::string("PATH=") + kProgramSearchPath, "LC_ALL=C"};
  const std::vector<char*> words = PointersTo(arguments);
  const std::vector<char*> variables = PointersTo(environment);
  Program program{file.c_str(), words.data(), variables.data(), output,
                  errors,       ::getpid(),   DescriptorLimit()};
  const pid_t leader = Start(program);
  if (program.error == 0) return leader;
  ::waitpid(leader, nullptr, 0);
  throw std::system_error(program.error, std::generic_category());
}

}  // namespace

ChildProcess::ChildProcess(const std::string& file, std::vector<std::string> arguments, int output,
                           int errors)
    : leader_(Spawn(file, arguments, output, errors)),
      end_(static_cast<int>(::syscall(SYS_pidfd_open, leader_, 0))) {}

ChildProcess::~ChildProcess() {
  if (leader_ < 0) return;
  KillGroup();
  while (::waitpid(leader_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

bool ChildProcess::HasEnded() const noexcept {
  siginfo_t ended{};
  const int result =
      ::waitid(P_PID, static_cast<id_t>(leader_), &ended, WEXITED | WNOHANG | WNOWAIT);
  return result != 0 || ended.si_pid != 0;
}

void ChildProcess::KillGroup() const noexcept {
  ::kill(-leader_, SIGKILL);
  // The leader may have left its own group.
  ::kill(leader_, SIGKILL);
}

int ChildProcess::WaitForEnd() {
  const pid_t leader = std::exchange(leader_, -1);
  int status = 0;
  while (::waitpid(leader, &status, 0) < 0) {
    if (errno != EINTR) Check(errno);
  }
  return status;
}

}  // namespace vtq
