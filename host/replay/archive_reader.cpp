// SPDX-License-Identifier: Apache-2.0
#include "host/replay/archive_reader.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

#include "host/capture/manifest.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBlockSize = 65536;

std::string PathOf(archive_entry* entry) {
  // A name that cannot be converted to the locale's character set may still be available as UTF-8.
  if (const char* path = archive_entry_pathname(entry)) return path;
  if (const char* path = archive_entry_pathname_utf8(entry)) return path;
  throw BadCapture("it contains an entry whose name cannot be read");
}

std::string TargetOf(archive_entry* entry) {
  const char* target = archive_entry_symlink(entry);
  return target != nullptr ? target : "";
}

EntryKind KindOf(archive_entry* entry) {
  if (archive_entry_hardlink(entry) != nullptr) return EntryKind::kHardLink;
  switch (archive_entry_filetype(entry)) {
    case AE_IFREG:
      return EntryKind::kFile;
    case AE_IFDIR:
      return EntryKind::kFolder;
    case AE_IFLNK:
      return EntryKind::kLink;
    default:
      return EntryKind::kOther;
  }
}

std::uint64_t SizeOf(archive_entry* entry) {
  const la_int64_t size = archive_entry_filetype(entry) == AE_IFREG ? archive_entry_size(entry) : 0;
  if (size < 0) throw BadCapture("it contains an entry of negative size");
  return static_cast<std::uint64_t>(size);
}

/// Enables formats and filters, except filters that would start another program.
void SupportFormats(archive* reader) {
  archive_read_support_format_tar(reader);
  archive_read_support_filter_gzip(reader);
  archive_read_support_filter_bzip2(reader);
  archive_read_support_filter_xz(reader);
  archive_read_support_filter_lzma(reader);
  archive_read_support_filter_zstd(reader);
  archive_read_support_filter_lz4(reader);
}

class LibraryReader final : public ArchiveReader {
 public:
  explicit LibraryReader(const std::string& name);

  bool IsDirectory() const noexcept override { return !directory_.empty(); }
  std::optional<ArchiveEntry> Next() override;
  void Enter() override;
  std::string_view Read() override;

 private:
  void OpenDirectory(const std::string& name);
  void OpenArchive(const std::string& name);
  /// Reads the beginning of an archive.
  void Start();
  std::string_view ReadHole();
  [[noreturn]] void Fail() const;

  std::unique_ptr<archive, int (*)(archive*)> archive_;
  archive_entry* entry_ = nullptr;
  bool hasStarted_ = false;
  std::uint64_t left_ = 0;  ///< unread bytes of the current file
  bool atHole_ = false;     ///< only zeros at the end of the current file are left
  vtq::FileDescriptor file_;
  std::string directory_;  ///< with a trailing slash; empty for an archive
  std::vector<char> buffer_;
};

LibraryReader::LibraryReader(const std::string& name)
    : archive_(nullptr, &archive_read_free), buffer_(kBlockSize) {
  std::error_code ignored;
  if (name != "-" && fs::is_directory(name, ignored)) {
    OpenDirectory(name);
  } else {
    OpenArchive(name);
  }
}

void LibraryReader::OpenDirectory(const std::string& name) {
  directory_ = fs::canonical(name).string();
  if (directory_ == "/") {
    throw BadCapture(
        "it is the root directory of this machine: leave out --root to show this machine");
  }
  archive_.reset(archive_read_disk_new());
  archive_read_disk_set_behavior(archive_.get(),
                                 ARCHIVE_READDISK_NO_ACL | ARCHIVE_READDISK_NO_XATTR |
                                     ARCHIVE_READDISK_NO_FFLAGS | ARCHIVE_READDISK_NO_SPARSE);
  if (archive_read_disk_open(archive_.get(), directory_.c_str()) != ARCHIVE_OK) Fail();
  directory_ += '/';
}

void LibraryReader::OpenArchive(const std::string& name) {
  if (name != "-") {
    file_ = vtq::FileDescriptor(open(name.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file_.IsOpen()) throw BadCapture(std::strerror(errno));
  }
  archive_.reset(archive_read_new());
  SupportFormats(archive_.get());
}

void LibraryReader::Start() {
  if (std::exchange(hasStarted_, true) || IsDirectory()) return;
  const int file = file_.IsOpen() ? file_.Get() : STDIN_FILENO;
  if (archive_read_open_fd(archive_.get(), file, kBlockSize) != ARCHIVE_OK) Fail();
}

std::optional<ArchiveEntry> LibraryReader::Next() {
  Start();
  const int result = archive_read_next_header(archive_.get(), &entry_);
  if (result == ARCHIVE_EOF) return std::nullopt;
  if (result < ARCHIVE_WARN) Fail();
  ArchiveEntry entry{PathOf(entry_), KindOf(entry_), TargetOf(entry_), SizeOf(entry_)};
  left_ = entry.size;
  atHole_ = false;
  if (IsDirectory()) {
    entry.path.erase(0, std::min(entry.path.size(), directory_.size()));
  }
  return entry;
}

void LibraryReader::Enter() {
  if (IsDirectory() && archive_read_disk_can_descend(archive_.get()) != 0 &&
      archive_read_disk_descend(archive_.get()) < ARCHIVE_WARN) {
    Fail();
  }
}

std::string_view LibraryReader::Read() {
  if (atHole_) return ReadHole();
  const la_ssize_t count = archive_read_data(archive_.get(), buffer_.data(), buffer_.size());
  if (count < 0) Fail();
  const auto size = static_cast<std::size_t>(count);
  // The map of a sparse file may contradict its size.
  if (size > left_) throw BadCapture("it contains a file that is larger than its stated size");
  atHole_ = size == 0 && !IsDirectory();
  if (atHole_) return ReadHole();
  left_ -= size;
  return {buffer_.data(), size};
}

// libarchive does not deliver the hole at the end of a sparse file.
std::string_view LibraryReader::ReadHole() {
  const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(left_, buffer_.size()));
  std::fill_n(buffer_.begin(), size, '\0');
  left_ -= size;
  return {buffer_.data(), size};
}

void LibraryReader::Fail() const {
  const char* reason = archive_error_string(archive_.get());
  throw BadCapture(reason != nullptr ? reason : "it cannot be read");
}

}  // namespace

std::unique_ptr<ArchiveReader> OpenArchive(const std::string& name) {
  return std::make_unique<LibraryReader>(name);
}

}  // namespace pciinfo
