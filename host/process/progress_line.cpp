#include "host/process/progress_line.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "host/console/output.h"

namespace pciinfo {
namespace {

constexpr int kSecond = 1000;  // in milliseconds
constexpr std::size_t kLineWidth = 79;

/// What is shown, made without memory of the heap.
class Line final {
 public:
  void Set(std::string_view what) noexcept {
    size_ = std::min(what.size(), text_.size());
    std::copy_n(what.begin(), size_, text_.begin());
    if (shown_) Show();
  }

  /// The cursor goes back to the front, so that a message of a process that fails covers the line.
  void Show() noexcept {
    constexpr std::string_view kErase = "\r\x1B[K";
    if (shown_ || size_ > 0) WriteAll(STDERR_FILENO, kErase);
    shown_ = size_ > 0;
    WriteAll(STDERR_FILENO, {text_.data(), size_});
    WriteAll(STDERR_FILENO, "\r");
  }

  void Erase() noexcept {
    if (!shown_) return;
    size_ = 0;
    Show();
  }

 private:
  std::array<char, kLineWidth> text_{};
  std::size_t size_ = 0;
  bool shown_ = false;
};

/// Shows what comes through the socket until its other ends are closed or it is shut down.
void ShowAll(int words) noexcept {
  Line line;
  int patience = kSecond;
  while (true) {
    pollfd watched{words, POLLIN, 0};
    const int count = poll(&watched, 1, patience);
    if (count < 0 && errno == EINTR) continue;
    if (count == 0) {
      line.Show();
      patience = -1;
      continue;
    }
    std::array<char, kLineWidth> what{};
    const ssize_t size = recv(words, what.data(), what.size(), 0);
    if (size <= 0) return line.Erase();
    line.Set({what.data(), static_cast<std::size_t>(size)});
  }
}

/// Its standard output is closed: whoever reads that waits for its last writer.
[[noreturn]] void BecomeShower(int words) noexcept {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTTOU}) {
    std::signal(signal, SIG_IGN);  // it ends when the others have
  }
  close(STDOUT_FILENO);
  const int kept = dup2(words, STDIN_FILENO);
  close_range(STDERR_FILENO + 1, ~0U, 0);
  ShowAll(kept);
  _exit(0);
}

/// The process is nobody's child: those that do the work end all their children.
bool StartShower(int words) noexcept {
  const pid_t middle = fork();
  if (middle < 0) return false;
  if (middle == 0) {
    if (fork() == 0) BecomeShower(words);
    _exit(0);
  }
  return waitpid(middle, nullptr, 0) == middle;
}

}  // namespace

ProgressLine::ProgressLine(bool wanted) noexcept {
  if (!wanted || isatty(STDERR_FILENO) == 0) return;
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) return;
  words_ = vtq::FileDescriptor(ends[0]);
  const vtq::FileDescriptor other(ends[1]);
  if (!StartShower(other.Get())) words_.Close();
}

void ProgressLine::Tell(std::string_view what) noexcept {
  if (!words_.IsOpen()) return;
  constexpr std::string_view kName = "pciinfo: ";
  std::array<char, kLineWidth> text{};
  const std::size_t size = std::min(what.size(), text.size() - kName.size());
  std::copy_n(what.begin(), size, std::copy(kName.begin(), kName.end(), text.begin()));
  send(words_.Get(), text.data(), kName.size() + size, MSG_NOSIGNAL | MSG_DONTWAIT);
}

void ProgressLine::End() noexcept {
  if (!words_.IsOpen()) return;
  shutdown(words_.Get(), SHUT_WR);
  pollfd watched{words_.Get(), POLLIN, 0};
  poll(&watched, 1, kSecond);  // its end of the socket closes when the line is erased
  words_.Close();
}

}  // namespace pciinfo
