// SPDX-License-Identifier: Apache-2.0
#include "host/capture/beneath.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <system_error>

namespace pciinfo {
namespace {

using vtq::FileDescriptor;

struct CloseDirectory {
  void operator()(DIR* directory) const { closedir(directory); }
};

FileDescriptor OpenAtOnce(const FileDescriptor& directory, const std::string& path, int flags,
                          mode_t mode) {
  open_how how{};
  how.flags = static_cast<unsigned>(flags | O_CLOEXEC);
  if ((flags & O_CREAT) != 0) how.mode = mode;  // the kernel refuses it otherwise
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS;
  return FileDescriptor(
      static_cast<int>(syscall(SYS_openat2, directory.Get(), path.c_str(), &how, sizeof how)));
}

FileDescriptor OpenDirectoryIn(const FileDescriptor& directory, const std::string& name,
                               int access) {
  constexpr int kFlags = O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  return FileDescriptor(openat(directory.Get(), name.c_str(), access | kFlags));
}

void RemoveEntry(const FileDescriptor& directory, const std::string& name) {
  if (unlinkat(directory.Get(), name.c_str(), 0) == 0) return;
  RemoveContent(OpenDirectoryIn(directory, name, O_RDONLY));
  unlinkat(directory.Get(), name.c_str(), AT_REMOVEDIR);
}

}  // namespace

FileDescriptor OpenBeneath(const FileDescriptor& directory, const std::string& path, int flags,
                           mode_t mode) {
  FileDescriptor file = OpenAtOnce(directory, path, flags, mode);
  // Filters of system calls answer EPERM to those that they do not know.
  const bool isUnknown = !file.IsOpen() && (errno == ENOSYS || errno == EPERM);
  return isUnknown ? OpenStepByStep(directory, path, flags, mode) : std::move(file);
}

FileDescriptor OpenStepByStep(const FileDescriptor& directory, const std::string& path, int flags,
                              mode_t mode) {
  FileDescriptor last;
  std::size_t start = 0;
  for (std::size_t end = path.find('/'); end != std::string::npos; end = path.find('/', start)) {
    last =
        OpenDirectoryIn(last.IsOpen() ? last : directory, path.substr(start, end - start), O_PATH);
    if (!last.IsOpen()) return last;
    start = end + 1;
  }
  return FileDescriptor(openat((last.IsOpen() ? last : directory).Get(), path.c_str() + start,
                               flags | O_NOFOLLOW | O_CLOEXEC, mode));
}

std::vector<std::string> NamesIn(const FileDescriptor& directory) {
  // A description of its own, because closedir() closes it and reading moves it.
  FileDescriptor own = OpenDirectoryIn(directory, ".", O_RDONLY);
  const std::unique_ptr<DIR, CloseDirectory> entries(own.IsOpen() ? fdopendir(own.Get()) : nullptr);
  if (!entries) throw std::system_error(errno, std::generic_category());
  own.Release();
  std::vector<std::string> names;
  errno = 0;
  while (const dirent* entry = readdir(entries.get())) {
    std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(std::move(name));
  }
  if (errno != 0) throw std::system_error(errno, std::generic_category());
  return names;
}

void RemoveContent(const FileDescriptor& directory) noexcept {
  if (!directory.IsOpen()) return;
  try {
    for (const std::string& name : NamesIn(directory)) RemoveEntry(directory, name);
  } catch (const std::exception&) {
    return;  // the rest stays
  }
}

bool IsEntry(const FileDescriptor& directory, const std::string& name,
             const FileDescriptor& file) noexcept {
  struct stat entry {};
  struct stat opened {};
  return fstatat(directory.Get(), name.c_str(), &entry, AT_SYMLINK_NOFOLLOW) == 0 &&
         fstat(file.Get(), &opened) == 0 && entry.st_dev == opened.st_dev &&
         entry.st_ino == opened.st_ino;
}

}  // namespace pciinfo
