// SPDX-License-Identifier: Apache-2.0
#include "host/process/pager.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/console/output.h"
#include "runtime/command_line.h"

namespace pciinfo {
namespace {

constexpr int kNotStarted = 127;  // what a shell answers for a command that it does not find
constexpr std::string_view kDefaultPager = "less";

/// The signals have their usual meaning for the pager, whatever this process made of them.
void ResetSignals() noexcept {
  for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGPIPE}) std::signal(signal, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Leaves those variables only that say how the terminal is, and switches off what a pager could do
/// for the user beside showing text.
void RestrictEnvironment() {
  constexpr std::array kKept = {"TERM", "LANG", "LC_ALL", "LC_CTYPE"};
  std::map<const char*, std::string> kept;
  for (const char* const name : kKept) {
    if (const char* const value = std::getenv(name)) kept[name] = value;
  }
  clearenv();
  for (const auto& [name, value] : kept) setenv(name, value.c_str(), 1);
  setenv("PATH", vtq::kProgramSearchPath, 1);
  setenv("LESSSECURE", "1", 1);
  setenv("LESSHISTFILE", "-", 1);
}

[[noreturn]] void BecomePager(const std::string& command, bool isRestricted, int input) {
  dup2(input, STDIN_FILENO);
  ResetSignals();
  if (isRestricted) RestrictEnvironment();
  setenv("LESS", "FRX", 0);
  setenv("LV", "-c", 0);
  // A command without anything for the shell needs none, which would say that it finds nothing.
  if (command.find_first_of("|&;<>()$`\\\"' \t\n*?[#~=%") == std::string::npos) {
    execlp(command.c_str(), command.c_str(), nullptr);
  } else {
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
  }
  _exit(kNotStarted);
}

/// Copies a piece. False at the end, and when nobody takes the copy.
bool CopyPiece(int from, int to) noexcept {
  std::array<char, 65536> piece{};
  ssize_t size = 0;
  do size = read(from, piece.data(), piece.size());
  while (size < 0 && errno == EINTR);
  return size > 0 && WriteAll(to, {piece.data(), static_cast<std::size_t>(size)}) == 0;
}

}  // namespace

Pager::Pager(std::string command, bool isRestricted)
    : command_(isRestricted ? kDefaultPager : std::move(command)), isRestricted_(isRestricted) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot start the pager");
  }
  reading_ = vtq::FileDescriptor(ends[0]);
  writing_ = vtq::FileDescriptor(ends[1]);
  if (isatty(STDERR_FILENO) == 0) return;
  lateMessages_ = vtq::FileDescriptor(memfd_create("messages", MFD_CLOEXEC));
}

void Pager::ReceiveOutput() noexcept {
  dup2(writing_.Get(), STDOUT_FILENO);
  writing_.Close();
  reading_.Close();  // or the worker would not notice when the pager is left early
}

// The reading end stays open while the pager runs: if it turns out that it could not be started,
// this process passes the output on.
int Pager::GetOutput() const noexcept { return process_ == 0 ? reading_.Get() : -1; }

void Pager::HandleOutput(bool isReadable) {
  if (!isReadable) return reading_.Close();
  if (!isMissing_) return Start();
  if (!CopyPiece(reading_.Get(), STDOUT_FILENO)) reading_.Close();
}

void Pager::Start() {
  termios settings{};
  if (tcgetattr(STDOUT_FILENO, &settings) == 0) terminal_ = settings;
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) {
    // The pager must not read the terminal beside the next program, and leaves the terminal as it
    // found it only when it is asked to end.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(kNotStarted);  // it ended before the call above
    BecomePager(command_, isRestricted_, reading_.Get());
  }
  if (child > 0) {
    process_ = child;
  } else {
    HandleEnd(W_EXITCODE(kNotStarted, 0));
  }
}

// A terminal that shows another program by now is that program's.
void Pager::RestoreTerminal() const noexcept {
  if (!terminal_ || tcgetpgrp(STDOUT_FILENO) != getpgrp()) return;
  tcsetattr(STDOUT_FILENO, TCSADRAIN, &*terminal_);
}

void Pager::HandleEnd(int status) {
  process_ = 0;
  if (WIFSIGNALED(status)) RestoreTerminal();
  isMissing_ = WIFEXITED(status) && WEXITSTATUS(status) == kNotStarted;
  if (!isMissing_) return reading_.Close();
  if (command_ == kDefaultPager) return;
  WriteMessage("the pager \"" + command_ +
               "\" cannot be started (see PCIINFO_PAGER, PAGER and --no-pager)");
}

void Pager::Drop() noexcept {
  if (process_ == 0) reading_.Close();
}

void Pager::ShowLateMessages() const noexcept {
  if (!lateMessages_.IsOpen() || lseek(lateMessages_.Get(), 0, SEEK_SET) != 0) return;
  while (CopyPiece(lateMessages_.Get(), STDERR_FILENO)) {
  }
}

}  // namespace pciinfo
