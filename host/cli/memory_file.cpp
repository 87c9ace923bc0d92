// SPDX-License-Identifier: Apache-2.0
#include "host/cli/memory_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace pciinfo {

MemoryFile::MemoryFile() : file_(memfd_create("output", MFD_CLOEXEC)) {
  if (!file_.IsOpen()) throw std::system_error(errno, std::generic_category());
}

std::string MemoryFile::Read() const {
  std::string text;
  lseek(file_.Get(), 0, SEEK_SET);
  while (vtq::AppendFrom(file_.Get(), text) > 0) {
  }
  return text;
}

StandardOutputTo::StandardOutputTo(const MemoryFile& file) : before_(dup(STDOUT_FILENO)) {
  if (dup2(file.Get(), STDOUT_FILENO) < 0) throw std::system_error(errno, std::generic_category());
}

StandardOutputTo::~StandardOutputTo() { dup2(before_.Get(), STDOUT_FILENO); }

}  // namespace pciinfo
