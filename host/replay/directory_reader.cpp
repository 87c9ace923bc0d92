// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>
#include <vector>

#include "host/capture/beneath.h"
#include "host/capture/manifest.h"
#include "host/replay/capture_reader.h"

namespace pciinfo {
namespace {

using vtq::FileDescriptor;

constexpr std::size_t kBlockSize = 65536;

[[noreturn]] void Fail(const std::string& path, const std::string& why) {
  throw BadCapture("its entry \"" + path.substr(0, 200) + "\" " + why);
}

[[noreturn]] void FailForErrno(const std::string& path) {
  Fail(path, std::string("cannot be read: ") + std::strerror(errno));
}

EntryKind KindOf(mode_t mode) {
  if (S_ISREG(mode)) return EntryKind::kFile;
  if (S_ISDIR(mode)) return EntryKind::kDirectory;
  return S_ISLNK(mode) ? EntryKind::kLink : EntryKind::kOther;
}

bool IsSame(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool IsRootOfThisMachine(const FileDescriptor& directory) {
  struct stat given {};
  struct stat root {};
  return fstat(directory.Get(), &given) == 0 && stat("/", &root) == 0 && IsSame(given, root);
}

/// Keeps one directory open at a time, however deep they are; those that were entered wait.
class DirectoryReader final : public CaptureReader {
 public:
  explicit DirectoryReader(FileDescriptor root) : root_(std::move(root)) {
    if (!IsRootOfThisMachine(root_)) return;
    throw BadCapture(
        "it is the root directory of this machine: leave out --root to show this machine");
  }

  bool IsDirectory() const noexcept override { return true; }
  std::optional<ArchiveEntry> Next() override;
  void Enter() override { entered_.push_back(path_); }
  std::string_view Read() override;

 private:
  bool OpenNextDirectory();
  ArchiveEntry Describe(const std::string& name);
  std::uint64_t OpenFile(const std::string& name);
  std::string ReadTarget(const std::string& name) const;
  void RequireWhole() const;

  FileDescriptor root_;
  std::vector<std::string> entered_;  ///< directories to read later
  bool isBegun_ = false;
  FileDescriptor directory_;        ///< the directory that is being read
  std::string prefix_;              ///< its path, with a slash unless it is empty
  std::vector<std::string> names_;  ///< what is left in it
  std::string path_;                ///< of the current entry
  struct stat status_ {};           ///< of the current entry
  FileDescriptor file_;             ///< the current entry, if it is a file
  std::uint64_t left_ = 0;          ///< unread bytes of that file
  std::array<char, kBlockSize> buffer_{};
};

std::optional<ArchiveEntry> DirectoryReader::Next() {
  file_.Close();
  left_ = 0;
  if (!std::exchange(isBegun_, true)) return ArchiveEntry{"", EntryKind::kDirectory, "", 0};
  while (names_.empty()) {
    if (!OpenNextDirectory()) return std::nullopt;
  }
  const std::string name = std::move(names_.back());
  names_.pop_back();
  path_ = prefix_ + name;
  return Describe(name);
}

bool DirectoryReader::OpenNextDirectory() {
  if (entered_.empty()) return false;
  path_ = std::move(entered_.back());
  entered_.pop_back();
  directory_ = OpenBeneath(root_, path_.empty() ? "." : path_, O_RDONLY | O_DIRECTORY);
  if (!directory_.IsOpen()) FailForErrno(path_);
  prefix_ = path_.empty() ? "" : path_ + "/";
  try {
    names_ = NamesIn(directory_);
  } catch (const std::system_error& failure) {
    Fail(path_, "cannot be read: " + failure.code().message());
  }
  return true;
}

ArchiveEntry DirectoryReader::Describe(const std::string& name) {
  if (fstatat(directory_.Get(), name.c_str(), &status_, AT_SYMLINK_NOFOLLOW) != 0) {
    FailForErrno(path_);
  }
  ArchiveEntry entry{path_, KindOf(status_.st_mode), "", 0};
  if (entry.kind == EntryKind::kFile) entry.size = OpenFile(name);
  if (entry.kind == EntryKind::kLink) entry.target = ReadTarget(name);
  return entry;
}

/// Opens the file that the entry was, and says its size. Somebody may have put a pipe or a link in
/// its place: opening never waits for the other end of a pipe.
std::uint64_t DirectoryReader::OpenFile(const std::string& name) {
  file_ = OpenBeneath(directory_, name, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  struct stat opened {};
  if (!file_.IsOpen() || fstat(file_.Get(), &opened) != 0) FailForErrno(path_);
  if (!IsSame(opened, status_)) Fail(path_, "was exchanged while it was read");
  left_ = static_cast<std::uint64_t>(opened.st_size);
  return left_;
}

std::string DirectoryReader::ReadTarget(const std::string& name) const {
  std::array<char, 4096> target{};
  const ssize_t size = readlinkat(directory_.Get(), name.c_str(), target.data(), target.size());
  if (size < 0) FailForErrno(path_);
  return {target.data(), static_cast<std::size_t>(size)};
}

std::string_view DirectoryReader::Read() {
  if (!file_.IsOpen()) return {};
  const auto wanted = std::min<std::uint64_t>(left_, buffer_.size());
  ssize_t size = 0;
  do {
    size = read(file_.Get(), buffer_.data(), wanted);
  } while (size < 0 && errno == EINTR);
  if (size < 0) FailForErrno(path_);
  if (size == 0) RequireWhole();
  left_ -= static_cast<std::uint64_t>(size);
  return {buffer_.data(), static_cast<std::size_t>(size)};
}

/// The size that the kernel's own files state is never that of their content, so only a size that
/// has changed tells that something is missing.
void DirectoryReader::RequireWhole() const {
  struct stat now {};
  if (fstat(file_.Get(), &now) != 0 || now.st_size != status_.st_size) {
    Fail(path_, "was changed while it was read");
  }
}

}  // namespace

std::unique_ptr<CaptureReader> OpenDirectory(vtq::FileDescriptor directory) {
  return std::make_unique<DirectoryReader>(std::move(directory));
}

}  // namespace pciinfo
