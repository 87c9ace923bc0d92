// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "host/capture/beneath.h"
#include "host/console/output.h"

namespace pciinfo {
namespace {

using vtq::FileDescriptor;

constexpr mode_t kDirectoryMode = 0755;
constexpr mode_t kFileMode = 0644;

void RequireEntry(bool done, const std::string& path) {
  if (!done) throw std::system_error(errno, std::generic_category(), "cannot write " + path);
}

std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

CaptureTree::CaptureTree(const std::string& directory)
    : root_(open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
  RequireEntry(root_.IsOpen(), directory);
}

FileDescriptor CaptureTree::OpenDirectoryOf(const std::string& path) {
  const std::size_t end = path.rfind('/');
  if (end == std::string::npos) return FileDescriptor(fcntl(root_.Get(), F_DUPFD_CLOEXEC, 0));
  FileDescriptor directory = OpenBeneath(root_, path.substr(0, end), O_PATH | O_DIRECTORY);
  if (!directory.IsOpen() && errno == ENOENT) return MakeDirectories(path);
  RequireEntry(directory.IsOpen(), path);
  return directory;
}

/// Makes the directories on the way to `path` and opens the last one.
FileDescriptor CaptureTree::MakeDirectories(const std::string& path) {
  FileDescriptor directory(fcntl(root_.Get(), F_DUPFD_CLOEXEC, 0));
  std::size_t start = 0;
  for (std::size_t end = path.find('/'); end != std::string::npos; end = path.find('/', start)) {
    const std::string name = path.substr(start, end - start);
    MakeDirectoryIn(directory, name, path);
    directory = OpenBeneath(directory, name, O_PATH | O_DIRECTORY);
    RequireEntry(directory.IsOpen(), path);
    start = end + 1;
  }
  return directory;
}

void CaptureTree::MakeDirectoryIn(const FileDescriptor& directory, const std::string& name,
                                  const std::string& path) {
  const bool isNew = mkdirat(directory.Get(), name.c_str(), kDirectoryMode) == 0;
  RequireEntry(isNew || errno == EEXIST, path);
  if (isNew) ++directories_;
}

void CaptureTree::MakeDirectory(const std::string& path) {
  MakeDirectoryIn(OpenDirectoryOf(path), NameOf(path), path);
}

void CaptureTree::MakeLink(const std::string& path, const std::string& target) {
  const FileDescriptor directory = OpenDirectoryOf(path);
  RequireEntry(symlinkat(target.c_str(), directory.Get(), NameOf(path).c_str()) == 0, path);
}

FileDescriptor CaptureTree::MakeFile(const std::string& path) {
  const FileDescriptor directory = OpenDirectoryOf(path);
  FileDescriptor file(openat(directory.Get(), NameOf(path).c_str(),
                             O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, kFileMode));
  RequireEntry(file.IsOpen(), path);
  return file;
}

void WriteBytes(const FileDescriptor& file, std::string_view bytes) {
  const int error = WriteAll(file.Get(), bytes);
  if (error != 0) throw std::system_error(error, std::generic_category(), "cannot write a file");
}

}  // namespace pciinfo
