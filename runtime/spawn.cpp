#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <limits>
#include <new>
#include <system_error>

#include "framework/os_specific.h"
#include "runtime/child_process.h"
#include "runtime/command_line.h"
#include "runtime/command_replay.h"
#include "runtime/file_descriptor.h"
#include "runtime/service_failures.h"

namespace NQZMVTQ20 {

namespace {

using Clock = std::chrono::steady_clock;
using vtq::ChildProcess;
using vtq::FileDescriptor;

constexpr std::size_t kKeptErrors = 4096;

[[noreturn]] void ThrowErrno() { throw std::system_error(errno, std::generic_category()); }

struct Pipe {
  FileDescriptor reading;
  FileDescriptor writing;
};

// The writing end is kept clear of the numbers 0 to 2: the child gets those anew, one by one, and
// would lose an end that stands there (as it may where the host has closed its own).
Pipe MakePipe() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) ThrowErrno();
  Pipe pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
  pipe.writing = FileDescriptor(::fcntl(pipe.writing.Get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  if (!pipe.writing.IsOpen()) ThrowErrno();
  return pipe;
}

int MillisecondsUntil(Clock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return static_cast<int>(std::clamp<decltype(left)>(left, 0, std::numeric_limits<int>::max()));
}

// One run of a program, from its start to its last byte of output.
class Run final {
 public:
  explicit Run(const std::vector<std::string>& words, const std::string& file)
      : Run(words, file, MakePipe(), MakePipe()) {}

  // Takes in both streams until the program ends (true) or the time is over (false).
  bool Drain(Clock::time_point deadline);

  // Ends what is left of the program's group, takes what its pipes still hold and returns the
  // program's status.
  int Finish();

  std::string& Output() noexcept { return outputText_; }
  std::string FirstErrorLine() const { return errorText_.substr(0, errorText_.find('\n')); }

 private:
  Run(const std::vector<std::string>& words, const std::string& file, Pipe output, Pipe errors)
      : output_(std::move(output.reading)),
        errors_(std::move(errors.reading)),
        child_(file, words, output.writing.Get(), errors.writing.Get()) {}

  // Milliseconds after which to look whether the program has ended. The end of its streams tells it
  // nearly always, a moment early; but a child of the program may hold them open.
  int LookAgainAfter() const noexcept;
  void ReadOutput();
  void ReadErrors();

  FileDescriptor output_;
  FileDescriptor errors_;
  ChildProcess child_;
  std::string outputText_;
  std::string errorText_;
};

void Run::ReadOutput() {
  const ssize_t count = vtq::AppendFrom(output_.Get(), outputText_);
  if (count < 0) ThrowErrno();  // a part of an output is not to pass for the whole
  if (count == 0) output_.Close();
}

void Run::ReadErrors() {
  if (vtq::AppendFrom(errors_.Get(), errorText_) <= 0) errors_.Close();
  if (errorText_.size() > kKeptErrors) errorText_.resize(kKeptErrors);
}

int Run::LookAgainAfter() const noexcept {
  constexpr int kWhileStreaming = 20;
  constexpr int kWhileEnding = 1;
  return output_.IsOpen() || errors_.IsOpen() ? kWhileStreaming : kWhileEnding;
}

bool Run::Drain(Clock::time_point deadline) {
  while (!child_.HasEnded()) {
    if (Clock::now() >= deadline) return false;
    // poll passes over the streams that are closed already.
    std::array<pollfd, 2> watched = {{{output_.Get(), POLLIN, 0}, {errors_.Get(), POLLIN, 0}}};
    const int wait = std::min(MillisecondsUntil(deadline), LookAgainAfter());
    if (::poll(watched.data(), watched.size(), wait) < 0) {
      if (errno != EINTR) ThrowErrno();
      continue;
    }
    if (watched[0].revents != 0) ReadOutput();
    if (watched[1].revents != 0) ReadErrors();
  }
  return true;
}

// How much a pipe holds; 0 for one that is closed.
std::size_t BytesIn(const FileDescriptor& pipe) {
  int count = 0;
  return pipe.IsOpen() && ::ioctl(pipe.Get(), FIONREAD, &count) == 0
             ? static_cast<std::size_t>(count)
             : 0;
}

int Run::Finish() {
  child_.KillGroup();
  // Bounded by what is there now: a process that left the group may write for ever.
  const std::size_t wanted = outputText_.size() + BytesIn(output_);
  while (outputText_.size() < wanted && output_.IsOpen()) ReadOutput();
  if (BytesIn(errors_) > 0) ReadErrors();
  return child_.WaitForEnd();
}

[[noreturn]] void Fail(const std::string& command, const std::string& reason,
                       TVTQStatusCode::EVTQStatusCode code = TVTQStatusCode::kFailure) {
  vtq::FailService("the command \"" + command + "\" " + reason, code);
}

Run Start(const std::string& command, const std::vector<std::string>& words,
          const std::string& file) {
  try {
    return Run(words, file);
  } catch (const std::system_error& error) {
    Fail(command, "cannot be started: " + error.code().message(),
         vtq::StatusOfErrno(error.code().value()));
  }
}

std::string RunToEnd(const std::string& command, const std::vector<std::string>& words,
                     const std::string& file, int seconds) {
  Run run = Start(command, words, file);
  const bool ended = run.Drain(Clock::now() + std::chrono::seconds(seconds));
  const int status = run.Finish();
  if (!ended) Fail(command, "ran out of time after " + std::to_string(seconds) + " seconds");
  if (WIFSIGNALED(status)) {
    Fail(command, "died by signal " + std::to_string(WTERMSIG(status)));
  }
  if (WEXITSTATUS(status) != 0 && run.Output().empty()) {
    const std::string line = run.FirstErrorLine();
    Fail(command, "exited with status " + std::to_string(WEXITSTATUS(status)) +
                      " and printed nothing" + (line.empty() ? "" : ": " + line));
  }
  return std::move(run.Output());
}

}  // namespace

std::string TOSSpecific::SpawnProcess(const std::string& command, int seconds) {
  if (std::optional<std::string> recorded = vtq::RecordedOutput(command)) return *recorded;
  const std::vector<std::string> words = vtq::SplitCommand(command);
  if (words.empty()) {
    Fail(command, "cannot be started: it names no program", TVTQStatusCode::kInvalidArgument);
  }
  const std::string file = vtq::FindProgram(words.front());
  if (file.empty()) {
    Fail(command, std::string("cannot be started: not found in ") + vtq::kProgramSearchPath,
         TVTQStatusCode::kNotFound);
  }
  try {
    return RunToEnd(command, words, file, std::max(seconds, 0));
  } catch (const std::system_error& error) {
    Fail(command, "could not be followed to its end: " + error.code().message());
  } catch (const std::bad_alloc&) {
    // What was kept of the output is free again by now.
    Fail(command, "printed more than there is memory for");
  }
}

}  // namespace NQZMVTQ20
