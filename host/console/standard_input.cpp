// SPDX-License-Identifier: Apache-2.0
#include "host/console/standard_input.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "host/console/output.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

[[noreturn]] void FailForErrno(const char* what) {
  throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
}

}  // namespace

std::string ReadStandardInput(std::uint64_t most) {
  std::string text;
  while (true) {
    const ssize_t count = vtq::AppendFrom(STDIN_FILENO, text);
    if (count == 0) return text;
    if (count < 0) FailForErrno("standard input cannot be read");
    if (most != 0 && text.size() > most) throw std::runtime_error("standard input is too large");
  }
}

void ReplaceStandardInput(const std::string& text) {
  const vtq::FileDescriptor memory(memfd_create("standard input", MFD_CLOEXEC));
  const bool isThere = memory.IsOpen() && WriteAll(memory.Get(), text) == 0 &&
                       lseek(memory.Get(), 0, SEEK_SET) == 0 &&
                       dup2(memory.Get(), STDIN_FILENO) == STDIN_FILENO;
  if (!isThere) FailForErrno("standard input cannot be kept");
}

off_t MakeStandardInputRepeatable(std::uint64_t most) {
  const off_t start = lseek(STDIN_FILENO, 0, SEEK_CUR);
  if (start >= 0) return start;
  ReplaceStandardInput(ReadStandardInput(most));
  return 0;
}

}  // namespace pciinfo
