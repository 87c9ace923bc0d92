#include "host/capture/capture_watch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <system_error>

#include "host/console/output.h"
#include "host/console/text.h"
#include "host/process/ending_signals.h"

namespace pciinfo {
namespace {

constexpr std::chrono::milliseconds kPatience(1000);
constexpr std::size_t kLineWidth = 79;

vtq::FileDescriptor Opened(int descriptor) {
  if (descriptor < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot watch for signals");
  }
  return vtq::FileDescriptor(descriptor);
}

}  // namespace

WorkWatch::WorkWatch(std::function<void()> cleanUp)
    : cleanUp_(std::move(cleanUp)),
      watched_(EndingSignals()),
      signals_(Opened(signalfd(-1, &watched_, SFD_CLOEXEC))),
      end_(Opened(eventfd(0, EFD_CLOEXEC))),
      isTerminal_(isatty(STDERR_FILENO) != 0) {
  pthread_sigmask(SIG_BLOCK, &watched_, &before_);
  thread_ = std::thread([this] { Run(); });
}

WorkWatch::~WorkWatch() {
  eventfd_write(end_.Get(), 1);
  thread_.join();
  ClearLine();
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void WorkWatch::Tell(const std::string& what) {
  const auto lock = Hold();
  what_ = what;
}

void WorkWatch::Run() {
  std::array<pollfd, 2> watched = {{{signals_.Get(), POLLIN, 0}, {end_.Get(), POLLIN, 0}}};
  const int limit = isTerminal_ ? static_cast<int>(kPatience.count()) : -1;
  while (true) {
    const int count = poll(watched.data(), watched.size(), limit);
    if (count == 0) Show();
    if (watched[0].revents != 0) {
      signalfd_siginfo signal{};
      if (read(signals_.Get(), &signal, sizeof signal) == sizeof signal) {
        EndBy(static_cast<int>(signal.ssi_signo));
      }
    }
    if (watched[1].revents != 0) return;
  }
}

void WorkWatch::EndBy(int signal) {
  const std::unique_lock lock(mutex_, kPatience);
  ClearLine();
  cleanUp_();
  EndBySignal(signal);
}

void WorkWatch::Show() {
  const std::unique_lock lock(mutex_, std::try_to_lock);
  if (!lock.owns_lock()) return;
  ClearLine();
  shown_ = true;
  WriteErrorText(Cut(Printable("pciinfo: reading " + what_), kLineWidth));
}

void WorkWatch::ClearLine() const {
  if (shown_) WriteErrorText("\r\x1B[K");
}

}  // namespace pciinfo
