// SPDX-License-Identifier: Apache-2.0
#include "host/console/output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "host/console/text.h"

namespace pciinfo {
namespace {

constexpr std::string_view kProgram = "pciinfo: ";

std::string subject;  // with the colon behind it; empty where there is none

}  // namespace

int WriteAll(int descriptor, std::string_view text) noexcept {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

Output::Output(int descriptor)
    : descriptor_(descriptor), buffer_(std::make_unique_for_overwrite<char[]>(kBufferSize)) {}

void Output::Send(std::string_view text) const {
  const int error = WriteAll(descriptor_, text);
  if (error == EPIPE) throw ClosedPipe();
  if (error != 0) {
    throw OutputError(std::string("cannot write the output: ") + std::strerror(error));
  }
}

void Output::Flush() { Send({buffer_.get(), std::exchange(size_, 0)}); }

void Output::WriteBeyondBuffer(std::string_view text) {
  Flush();
  if (text.size() > kBufferSize) return Send(text);
  Write(text);
}

void ReserveStandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) != -1) continue;
    // open() returns the lowest free number, which is the number of the closed stream.
    const int mode = descriptor == STDERR_FILENO ? O_WRONLY : O_RDONLY;
    if (open("/dev/null", mode) < 0) return;
  }
}

void WriteErrorText(std::string_view text) noexcept { WriteAll(STDERR_FILENO, text); }

MessageSubject::MessageSubject(std::string_view name) { subject = Printable(name) + ": "; }

MessageSubject::~MessageSubject() { subject.clear(); }

std::string WithSubject(std::string_view line) {
  const std::size_t start = line.starts_with(kProgram) ? kProgram.size() : 0;
  return std::string(line.substr(0, start)).append(subject).append(line.substr(start));
}

void WriteErrorLine(std::string_view line) noexcept {
  try {
    // One write, so that lines of several processes on one terminal do not mix.
    WriteErrorText(WithSubject(line) + '\n');
  } catch (const std::exception&) {
    WriteErrorText(line);
    WriteErrorText("\n");
  }
}

void WriteMessage(std::string_view text) noexcept {
  try {
    WriteErrorLine(std::string(kProgram) + Printable(text));
  } catch (const std::exception&) {
    WriteErrorText("pciinfo: out of memory\n");
  }
}

}  // namespace pciinfo
