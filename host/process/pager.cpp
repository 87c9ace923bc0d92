#include "host/process/pager.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "host/console/output.h"
#include "host/process/ending_signals.h"

namespace pciinfo {
namespace {

constexpr int kNotStarted = 127;  // what a shell answers for a command that it does not find
constexpr std::string_view kDefaultPager = "less";

[[noreturn]] void ThrowErrno() { throw std::system_error(errno, std::generic_category()); }

int WaitFor(pid_t child) noexcept {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

/// The process that signals to this one are passed on to.
volatile pid_t worker = 0;  // NOLINT: a signal handler sees nothing else

void PassOn(int signal) {
  const int error = errno;
  kill(worker, signal);
  errno = error;
}

/// As long as this lives, signals that end the program go to the process that does the work: this
/// one waits for the pager, which has its own mind about an interrupt.
class PassedOnSignals final {
 public:
  explicit PassedOnSignals(pid_t process) noexcept {
    worker = process;
    const sigset_t ending = EndingSignals();
    for (std::size_t i = 0; i < before_.size(); ++i) {
      struct sigaction action {};
      action.sa_handler = sigismember(&ending, kSignals[i]) == 1 ? &PassOn : SIG_IGN;
      action.sa_flags = SA_RESTART;
      sigaction(kSignals[i], &action, &before_[i]);
    }
  }
  PassedOnSignals(const PassedOnSignals&) = delete;
  PassedOnSignals& operator=(const PassedOnSignals&) = delete;
  ~PassedOnSignals() {
    for (std::size_t i = 0; i < before_.size(); ++i) sigaction(kSignals[i], &before_[i], nullptr);
  }

 private:
  static constexpr std::array kSignals = {SIGHUP, SIGINT, SIGTERM};
  std::array<struct sigaction, kSignals.size()> before_{};
};

[[noreturn]] void BecomePager(const std::string& pager, int input) noexcept {
  dup2(input, STDIN_FILENO);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGPIPE}) std::signal(signal, SIG_DFL);
  setenv("LESS", "FRX", 0);
  setenv("LV", "-c", 0);
  // A command without anything for the shell needs none, which would say that it finds nothing.
  if (pager.find_first_of("|&;<>()$`\\\"' \t\n*?[#~=%") == std::string::npos) {
    execlp(pager.c_str(), pager.c_str(), nullptr);
  } else {
    execl("/bin/sh", "sh", "-c", pager.c_str(), nullptr);
  }
  _exit(kNotStarted);
}

/// What a reader who went away leaves is left.
void CopyAll(int from, int to) noexcept {
  std::array<char, 65536> piece{};
  while (true) {
    const ssize_t size = read(from, piece.data(), piece.size());
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return;
    if (WriteAll(to, {piece.data(), static_cast<std::size_t>(size)}) != 0) return;
  }
}

/// False at the end of an output that there was nothing of.
bool AwaitOutput(int output) noexcept {
  pollfd watched{output, POLLIN, 0};
  while (poll(&watched, 1, -1) < 0 && errno == EINTR) {
  }
  return (watched.revents & POLLIN) != 0;
}

void ShowOutput(const std::string& pager, vtq::FileDescriptor output) {
  if (!AwaitOutput(output.Get())) return;
  const pid_t child = fork();
  if (child == 0) BecomePager(pager, output.Get());
  const int status = child < 0 ? kNotStarted << 8 : WaitFor(child);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != kNotStarted) return;
  if (pager != kDefaultPager) {
    WriteMessage("the pager \"" + pager +
                 "\" cannot be started (see PCIINFO_PAGER, PAGER and --no-pager)");
  }
  CopyAll(output.Get(), STDOUT_FILENO);
}

ExitStatus StatusOf(int status) noexcept {
  if (WIFSIGNALED(status)) EndBySignal(WTERMSIG(status));
  if (!WIFEXITED(status)) return kFailed;
  const auto answer = static_cast<ExitStatus>(WEXITSTATUS(status));
  return answer == kPipeClosed ? kAllCollected : answer;
}

vtq::FileDescriptor MakeMessageFile() {
  if (isatty(STDERR_FILENO) == 0) return {};
  return vtq::FileDescriptor(memfd_create("messages", MFD_CLOEXEC));
}

}  // namespace

void LateMessages::Hold() const noexcept {
  if (file_.IsOpen()) dup2(file_.Get(), STDERR_FILENO);
}

ExitStatus RunWithPager(const std::string& pager,
                        const std::function<ExitStatus(const LateMessages&)>& run) {
  vtq::FileDescriptor messages = MakeMessageFile();
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) ThrowErrno();
  vtq::FileDescriptor reading(ends[0]);
  vtq::FileDescriptor writing(ends[1]);
  const pid_t child = fork();
  if (child < 0) ThrowErrno();
  if (child == 0) {
    reading.Close();
    dup2(writing.Get(), STDOUT_FILENO);
    writing.Close();
    return run(LateMessages(std::move(messages)));
  }
  const PassedOnSignals signals(child);
  writing.Close();
  ShowOutput(pager, std::move(reading));
  const int status = WaitFor(child);
  if (messages.IsOpen() && lseek(messages.Get(), 0, SEEK_SET) == 0) {
    CopyAll(messages.Get(), STDERR_FILENO);
  }
  return StatusOf(status);
}

}  // namespace pciinfo
