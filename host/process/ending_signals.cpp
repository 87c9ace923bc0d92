#include "host/process/ending_signals.h"

#include <csignal>
#include <initializer_list>

namespace pciinfo {

sigset_t EndingSignals() noexcept {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    struct sigaction action {};
    const bool ignored = sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
    if (!ignored) sigaddset(&signals, signal);
  }
  return signals;
}

void EndBySignal(int signal) noexcept {
  std::signal(signal, SIG_DFL);
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
  raise(signal);
}

}  // namespace pciinfo
