// SPDX-License-Identifier: Apache-2.0
#include "host/process/signals.h"

#include <sys/signalfd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace pciinfo {
namespace {

/// Signals from outside that end a program which does nothing about them.
constexpr std::array kEndingSignals = {SIGHUP,  SIGINT,  SIGQUIT,   SIGTERM, SIGUSR1, SIGUSR2,
                                       SIGALRM, SIGXCPU, SIGVTALRM, SIGPROF, SIGIO,   SIGPWR};

bool IsIgnored(int signal) noexcept {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t SignalsToHold() noexcept {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : kEndingSignals) {
    if (!IsIgnored(signal)) sigaddset(&signals, signal);
  }
  sigaddset(&signals, SIGCHLD);
  return signals;
}

}  // namespace

HeldSignals::HeldSignals() : held_(SignalsToHold()) {
  // Where SIGCHLD is ignored, the kernel drops the status of a child that ends.
  std::signal(SIGCHLD, SIG_DFL);
  file_ = vtq::FileDescriptor(signalfd(-1, &held_, SFD_CLOEXEC | SFD_NONBLOCK));
  if (!file_.IsOpen()) {
    throw std::system_error(errno, std::generic_category(), "cannot watch for signals");
  }
  sigprocmask(SIG_BLOCK, &held_, &before_);
}

int HeldSignals::Take() const noexcept {
  signalfd_siginfo signal{};
  const bool isWhole = read(file_.Get(), &signal, sizeof signal) == sizeof signal;
  return isWhole ? static_cast<int>(signal.ssi_signo) : 0;
}

void HeldSignals::Release() noexcept {
  if (!file_.IsOpen()) return;
  file_.Close();
  sigprocmask(SIG_SETMASK, &before_, nullptr);
}

void EndBySignal(int signal) noexcept {
  std::signal(signal, SIG_DFL);
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  sigprocmask(SIG_UNBLOCK, &only, nullptr);
  raise(signal);
}

}  // namespace pciinfo
