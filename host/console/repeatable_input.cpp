// SPDX-License-Identifier: Apache-2.0
#include "host/console/repeatable_input.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "host/console/output.h"

namespace pciinfo {
namespace {

using vtq::FileDescriptor;
using Clock = std::chrono::steady_clock;

[[noreturn]] void FailForErrno() {
  throw std::runtime_error(std::string("cannot be read: ") + std::strerror(errno));
}

bool IsKept(const std::string& name) {
  struct stat status {};
  return name == "-" ||
         (stat(name.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode));
}

/// Opening a pipe does not wait for the process that writes to it.
FileDescriptor Open(const std::string& name) {
  FileDescriptor file(name == "-"
                          ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                          : open(name.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file.IsOpen()) FailForErrno();
  return file;
}

bool HasMore(const FileDescriptor& file, Clock::time_point end) {
  constexpr std::chrono::milliseconds kMost{std::numeric_limits<int>::max()};
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
  pollfd watched{file.Get(), POLLIN, 0};
  const auto wait = std::clamp(left, std::chrono::milliseconds{0}, kMost);
  return poll(&watched, 1, static_cast<int>(wait.count())) != 0;
}

/// Appends what is there to `memory`. Returns the number of bytes, 0 at the end.
std::size_t Move(const FileDescriptor& file, const FileDescriptor& memory) {
  std::string text;
  const ssize_t count = vtq::AppendFrom(file.Get(), text);
  if (count < 0) FailForErrno();
  errno = WriteAll(memory.Get(), text);
  if (errno != 0) FailForErrno();
  return text.size();
}

FileDescriptor ReadToEnd(const FileDescriptor& file, const InputLimits& limits) {
  FileDescriptor memory(memfd_create("input", MFD_CLOEXEC));
  if (!memory.IsOpen()) FailForErrno();
  const Clock::time_point end = Clock::now() + limits.time;
  std::uint64_t all = 0;
  while (HasMore(file, end)) {
    const std::size_t count = Move(file, memory);
    if (count == 0) return memory;
    all += count;
    if (all > limits.bytes) {
      throw std::runtime_error(
          fmt::format("is larger than {} MiB (see --memory-limit)", limits.bytes >> 20U));
    }
  }
  throw std::runtime_error(fmt::format("did not come to an end in {:g} seconds (see --timeout)",
                                       std::chrono::duration<double>(limits.time).count()));
}

}  // namespace

RepeatableInput::RepeatableInput(const std::string& name, const InputLimits& limits) : file_(name) {
  if (!IsKept(name)) return;
  try {
    memory_ = ReadToEnd(Open(name), limits);
  } catch (const std::runtime_error& failure) {
    throw std::runtime_error((name == "-" ? "standard input" : name) + " " + failure.what());
  }
  file_ = "/proc/self/fd/" + std::to_string(memory_.Get());
}

}  // namespace pciinfo
