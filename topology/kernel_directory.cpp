// SPDX-License-Identifier: Apache-2.0
#include "topology/kernel_directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#include "topology/read_failures.h"

namespace topology {

namespace {

/// What the kernel answers where a device lacks something, or where links are refused.
bool IsAbsence(int error) {
  constexpr std::array kAbsences = {ENOENT, ENOTDIR, ENODEV, ENXIO,
                                    ELOOP,  EINVAL,  EISDIR, EOPNOTSUPP};
  return std::find(kAbsences.begin(), kAbsences.end(), error) != kAbsences.end();
}

}  // namespace

Directory::Directory(const std::string& path)
    : name_(path), file_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (!IsOpen()) NoteFailure("");
}

Directory::Directory(const Directory& parent, const char* name, Links links)
    : parent_(&parent),
      name_(name),
      file_(parent.IsOpen() ? openat(parent.file_, name,
                                     O_RDONLY | O_DIRECTORY | O_CLOEXEC |
                                         (links == Links::kRefuse ? O_NOFOLLOW : 0))
                            : -1) {
  if (!IsOpen() && parent.IsOpen()) NoteFailure("");
}

Directory::~Directory() {
  if (IsOpen()) close(file_);
}

std::string Directory::GetPath() const {
  return parent_ == nullptr ? name_ : parent_->GetPath() + "/" + name_;
}

void Directory::NoteFailure(const char* name) const {
  if (IsAbsence(errno)) return;
  const int error = errno;
  NoteReadFailure(*name == '\0' ? GetPath() : GetPath() + "/" + name, error);
}

std::vector<std::string> Directory::Names() const {
  std::vector<std::string> names;
  if (!IsOpen()) return names;
  // Without a stream of the C library, which needs seven system calls and 32 KB more for each of
  // thousands of directories.
  alignas(dirent64) char part[8192];
  ssize_t size = lseek(file_, 0, SEEK_SET) < 0 ? -1 : 1;
  while (size > 0) {
    size = getdents64(file_, part, sizeof part);
    for (ssize_t at = 0; at < size;) {
      const auto* const entry = reinterpret_cast<const dirent64*>(part + at);
      if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
      at += entry->d_reclen;
    }
  }
  if (size < 0) NoteFailure("");
  std::sort(names.begin(), names.end());
  return names;
}

int Directory::OpenFile(const char* name) const {
  if (!IsOpen()) {
    errno = ENOENT;
    return -1;
  }
  return openat(file_, name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

std::optional<std::string> Directory::Read(const char* name, std::size_t limit,
                                           std::size_t offset) const {
  const int file = OpenFile(name);
  if (file < 0) {
    NoteFailure(name);
    return std::nullopt;
  }
  std::string content;
  char part[4096];
  for (bool isLast = false; !isLast && content.size() < limit;) {
    const std::size_t wanted = std::min(limit - content.size(), sizeof part);
    const ssize_t count = pread(file, part, wanted, static_cast<off_t>(offset + content.size()));
    if (count < 0) NoteFailure(name);
    if (count > 0) content.append(part, static_cast<std::size_t>(count));
    isLast = count < static_cast<ssize_t>(wanted);
  }
  close(file);
  if (content.empty()) return std::nullopt;
  return content;
}

std::string Directory::ReadLine(const char* name) const {
  std::string text = Read(name, 256).value_or("");
  text.erase(std::min(text.find('\n'), text.size()));
  text.erase(text.find_last_not_of(" \t") + 1);
  return text;
}

std::string Directory::ReadLinkName(const char* name) const {
  if (!IsOpen()) return "";
  char target[PATH_MAX];
  const ssize_t size = readlinkat(file_, name, target, sizeof target);
  if (size < 0) NoteFailure(name);
  if (size <= 0) return "";
  const std::string text(target, static_cast<std::size_t>(size));
  return text.substr(text.rfind('/') + 1);
}

}  // namespace topology
