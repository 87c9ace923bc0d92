// SPDX-License-Identifier: Apache-2.0
#include "runtime/files.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "runtime/file_descriptor.h"
#include "runtime/service_failures.h"

namespace vtq {

namespace {

[[noreturn]] void ThrowUnreadable(const std::string& path, int error) {
  throw NQZMVTQ20::TVTQException("the file " + path + " cannot be read: " + std::strerror(error),
                                 StatusOfErrno(error));
}

/// The size that the kernel tells, at most 16 MiB, because a sparse file may have any size.
std::size_t SizeOf(int file) {
  constexpr off_t kMost = 16 << 20;
  struct stat status {};
  if (::fstat(file, &status) != 0) return 0;
  return static_cast<std::size_t>(std::min(status.st_size, kMost));
}

}  // namespace

std::string ReadFile(const std::string& path) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.IsOpen()) ThrowUnreadable(path, errno);
  std::string content;
  content.reserve(SizeOf(file.Get()));
  ssize_t count = 0;
  // Reads until the end, because files in /proc and /sys report a size of 0 or of a page.
  do {
    count = AppendFrom(file.Get(), content);
  } while (count > 0);
  if (count < 0) ThrowUnreadable(path, errno);
  return content;
}

}  // namespace vtq

namespace NQZMVTQ20 {

std::string TOSSpecific::CaptureFile(const std::string& path) {
  try {
    return vtq::ReadFile(path);
  } catch (const TVTQException& failure) {
    vtq::FailService(failure.what(), failure.GetStatusCode());
  }
}

bool TOSSpecific::FileExists(const std::string& path) noexcept {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0;
}

}  // namespace NQZMVTQ20
