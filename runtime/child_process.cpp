// SPDX-License-Identifier: Apache-2.0
#include "runtime/child_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "runtime/command_line.h"

namespace vtq {

namespace {

void Check(int error) {
  if (error != 0) throw std::system_error(error, std::generic_category());
}

class FileActions final {
 public:
  FileActions(int output, int errors) {
    Check(::posix_spawn_file_actions_init(&actions_));
    try {
      Check(::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
      Check(::posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO));
      Check(::posix_spawn_file_actions_adddup2(&actions_, errors, STDERR_FILENO));
      Check(::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1));
    } catch (...) {
      ::posix_spawn_file_actions_destroy(&actions_);
      throw;
    }
  }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }

  const posix_spawn_file_actions_t* Get() const noexcept { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

class Attributes final {
 public:
  Attributes() {
    Check(::posix_spawnattr_init(&attributes_));
    sigset_t signals;
    ::sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes_, &signals);
    ::sigfillset(&signals);
    ::posix_spawnattr_setsigdefault(&attributes_, &signals);
    ::posix_spawnattr_setpgroup(&attributes_, 0);
    ::posix_spawnattr_setflags(
        &attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { ::posix_spawnattr_destroy(&attributes_); }

  const posix_spawnattr_t* Get() const noexcept { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

std::vector<char*> PointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

pid_t Spawn(const std::string& file, std::vector<std::string>& arguments, int output, int errors) {
  const FileActions actions(output, errors);
  const Attributes attributes;
  std::vector<std::string> environment = {std::string("PATH=") + kProgramSearchPath, "LC_ALL=C"};
  pid_t leader = -1;
  Check(::posix_spawn(&leader, file.c_str(), actions.Get(), attributes.Get(),
                      PointersTo(arguments).data(), PointersTo(environment).data()));
  return leader;
}

}  // namespace

ChildProcess::ChildProcess(const std::string& file, std::vector<std::string> arguments, int output,
                           int errors)
    : leader_(Spawn(file, arguments, output, errors)) {}

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
