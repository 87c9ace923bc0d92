#include "host/process/relayed_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <string_view>
#include <system_error>

#include "host/console/output.h"
#include "host/console/text.h"
#include "host/process/guarded_run.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

constexpr std::size_t kLongestMessage = 65536;

struct Pipe {
  Pipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category());
    reading = vtq::FileDescriptor(ends[0]);
    writing = vtq::FileDescriptor(ends[1]);
  }

  vtq::FileDescriptor reading;
  vtq::FileDescriptor writing;
};

/// Passes messages on, line by line.
class Messages final {
 public:
  explicit Messages(const std::string& name) : name_(Printable(name)) {}

  std::string& GetText() { return text_; }
  void PassOn(bool isOver) {
    for (std::size_t end = text_.find('\n'); end != std::string::npos; end = text_.find('\n')) {
      Write(std::string_view(text_).substr(0, end));
      text_.erase(0, end + 1);
    }
    if (text_.empty() || (!isOver && text_.size() < kLongestMessage)) return;
    Write(text_);
    text_.clear();
  }

 private:
  void Write(std::string_view line) const {
    constexpr std::string_view kProgram = "pciinfo: ";
    const bool isMessage = line.starts_with(kProgram);
    if (isMessage) line.remove_prefix(kProgram.size());
    WriteErrorLine((isMessage ? std::string(kProgram) : "") + name_ + ": " + std::string(line));
  }

  std::string name_;
  std::string text_;
};

[[noreturn]] void Become(Pipe& output, Pipe& messages, const std::function<ExitStatus()>& run) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  dup2(output.writing.Get(), STDOUT_FILENO);
  dup2(messages.writing.Get(), STDERR_FILENO);
  for (Pipe* pipe : {&output, &messages}) {
    pipe->reading.Close();
    pipe->writing.Close();
  }
  // The run may go on in processes of its own, each of which comes to this end.
  _exit(RunGuarded(run));
}

/// Appends what there is; closes the descriptor at the end.
void Take(vtq::FileDescriptor& from, std::string& text) {
  const ssize_t count = AppendBytes(from.Get(), text);
  if (count == 0 || (count < 0 && errno != EAGAIN)) from.Close();
}

class Relay final {
 public:
  Relay(const std::string& name, std::size_t most, pid_t process)
      : messages_(name), most_(most), process_(process) {}

  RelayedResult Run(Pipe& output, Pipe& messages) {
    while (output.reading.IsOpen() || messages.reading.IsOpen()) {
      std::array<pollfd, 2> watched = {
          {{output.reading.Get(), POLLIN, 0}, {messages.reading.Get(), POLLIN, 0}}};
      if (poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR) break;
      if (watched[0].revents != 0) TakeOutput(output.reading);
      if (watched[1].revents != 0) {
        Take(messages.reading, messages_.GetText());
        messages_.PassOn(false);
      }
    }
    messages_.PassOn(true);
    return End();
  }

 private:
  void TakeOutput(vtq::FileDescriptor& from) {
    Take(from, result_.output);
    if (most_ == 0 || result_.output.size() <= most_) return;
    result_.isTooLarge = true;
    from.Close();
    kill(process_, SIGTERM);
  }

  RelayedResult End() {
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    result_.hasExited = WIFEXITED(status);
    result_.status = result_.hasExited ? WEXITSTATUS(status) : 0;
    return std::move(result_);
  }

  Messages messages_;
  std::size_t most_;
  pid_t process_;
  RelayedResult result_;
};

}  // namespace

ssize_t AppendBytes(int descriptor, std::string& text) {
  std::array<char, 65536> block{};
  ssize_t count = 0;
  do {
    count = read(descriptor, block.data(), block.size());
  } while (count < 0 && errno == EINTR);
  if (count > 0) text.append(block.data(), static_cast<std::size_t>(count));
  return count;
}

RelayedResult RunRelayed(const std::string& name, std::size_t most,
                         const std::function<ExitStatus()>& run) {
  Pipe output;
  Pipe messages;
  std::fflush(nullptr);
  const pid_t process = fork();
  if (process < 0) throw std::system_error(errno, std::generic_category());
  if (process == 0) Become(output, messages, run);
  output.writing.Close();
  messages.writing.Close();
  return Relay(name, most, process).Run(output, messages);
}

}  // namespace pciinfo
