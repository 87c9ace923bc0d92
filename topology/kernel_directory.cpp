// SPDX-License-Identifier: Apache-2.0
#include "topology/kernel_directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

namespace topology {

Directory::Directory(const std::string& path)
    : file_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

Directory::Directory(const Directory& parent, const char* name, Links links)
    : file_(parent.IsOpen() ? openat(parent.file_, name,
                                     O_RDONLY | O_DIRECTORY | O_CLOEXEC |
                                         (links == Links::kRefuse ? O_NOFOLLOW : 0))
                            : -1) {}

Directory::~Directory() {
  if (IsOpen()) close(file_);
}

std::vector<std::string> Directory::Names() const {
  std::vector<std::string> names;
  const int copy = IsOpen() ? openat(file_, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
  DIR* const stream = copy < 0 ? nullptr : fdopendir(copy);
  if (stream == nullptr) {
    if (copy >= 0) close(copy);
    return names;
  }
  while (const dirent* const entry = readdir(stream)) {
    if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
  }
  closedir(stream);
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
  if (file < 0) return std::nullopt;
  std::string content;
  char part[4096];
  for (bool isLast = false; !isLast && content.size() < limit;) {
    const std::size_t wanted = std::min(limit - content.size(), sizeof part);
    const ssize_t count = pread(file, part, wanted, static_cast<off_t>(offset + content.size()));
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
  std::array<char, PATH_MAX> target{};
  const ssize_t size = readlinkat(file_, name, target.data(), target.size());
  if (size <= 0) return "";
  const std::string text(target.data(), static_cast<std::size_t>(size));
  return text.substr(text.rfind('/') + 1);
}

}  // namespace topology
