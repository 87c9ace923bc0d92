// SPDX-License-Identifier: Apache-2.0
#include "runtime/command_run.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

namespace vtq {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kKeptErrors = 4096;
constexpr int kLookAgainAfter = 20;  // milliseconds, for kernels that do not tell an end

[[noreturn]] void ThrowErrno() { throw std::system_error(errno, std::generic_category()); }

int MillisecondsUntil(Clock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return static_cast<int>(std::clamp<decltype(left)>(left, 0, std::numeric_limits<int>::max()));
}

// How much a pipe holds; 0 for one that is closed.
std::size_t BytesIn(const FileDescriptor& pipe) {
  int count = 0;
  return pipe.IsOpen() && ::ioctl(pipe.Get(), FIONREAD, &count) == 0
             ? static_cast<std::size_t>(count)
             : 0;
}

}  // namespace

// The writing end is kept clear of the numbers 0 to 2: the child gets those anew, one by one, and
// would lose an end that stands there (as it may where the host has closed its own).
CommandRun::Pipe CommandRun::MakePipe() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) ThrowErrno();
  Pipe pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
  pipe.writing = FileDescriptor(::fcntl(pipe.writing.Get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  if (!pipe.writing.IsOpen()) ThrowErrno();
  return pipe;
}

CommandRun::CommandRun(const std::vector<std::string>& words, const std::string& file)
    : CommandRun(words, file, MakePipe(), MakePipe()) {}

CommandRun::CommandRun(const std::vector<std::string>& words, const std::string& file, Pipe output,
                       Pipe errors)
    : output_(std::move(output.reading)),
      errors_(std::move(errors.reading)),
      child_(file, words, output.writing.Get(), errors.writing.Get()) {}

void CommandRun::ReadOutput() {
  const ssize_t count = AppendFrom(output_.Get(), outputText_);
  if (count < 0) ThrowErrno();  // a part of an output is not to pass for the whole
  if (count == 0) output_.Close();
}

void CommandRun::ReadErrors() {
  if (AppendFrom(errors_.Get(), errorText_) <= 0) errors_.Close();
  if (errorText_.size() > kKeptErrors) errorText_.resize(kKeptErrors);
}

bool CommandRun::Drain(Clock::time_point deadline) {
  while (!child_.HasEnded()) {
    if (Clock::now() >= deadline) return false;
    // poll ignores negative descriptors: those of closed streams, and the one for the end of the
    // program where the kernel gives none.
    std::array<pollfd, 3> watched = {{{output_.Get(), POLLIN, 0},
                                      {errors_.Get(), POLLIN, 0},
                                      {child_.GetEndDescriptor(), POLLIN, 0}}};
    const int wait = std::min(MillisecondsUntil(deadline), kLookAgainAfter);
    if (::poll(watched.data(), watched.size(), wait) < 0) {
      if (errno != EINTR) ThrowErrno();
      continue;
    }
    if (watched[0].revents != 0) ReadOutput();
    if (watched[1].revents != 0) ReadErrors();
  }
  return true;
}

int CommandRun::Finish() {
  child_.KillGroup();
  // Bounded by what is there now: a process that left the group may write for ever.
  const std::size_t wanted = outputText_.size() + BytesIn(output_);
  while (outputText_.size() < wanted && output_.IsOpen()) ReadOutput();
  if (BytesIn(errors_) > 0) ReadErrors();
  return child_.WaitForEnd();
}

}  // namespace vtq
