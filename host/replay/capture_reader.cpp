// SPDX-License-Identifier: Apache-2.0
#include "host/replay/capture_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "host/capture/manifest.h"

namespace pciinfo {

std::unique_ptr<CaptureReader> OpenCapture(const std::string& name) {
  vtq::FileDescriptor file(name == "-" ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                       : open(name.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC));
  struct stat status {};
  if (!file.IsOpen() || fstat(file.Get(), &status) != 0) throw BadCapture(std::strerror(errno));
  return S_ISDIR(status.st_mode) ? OpenDirectory(std::move(file)) : OpenArchive(std::move(file));
}

}  // namespace pciinfo
