// SPDX-License-Identifier: Apache-2.0
#include <archive.h>
#include <archive_entry.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <utility>
#include <vector>

#include "host/capture/manifest.h"
#include "host/replay/capture_reader.h"

namespace pciinfo {
namespace {

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
      return EntryKind::kDirectory;
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

class LibraryReader final : public CaptureReader {
 public:
  explicit LibraryReader(vtq::FileDescriptor file);

  bool IsDirectory() const noexcept override { return false; }
  std::optional<ArchiveEntry> Next() override;
  void Enter() override {}
  std::string_view Read() override;

 private:
  /// Reads the beginning of the archive.
  void Start();
  std::string_view ReadHole();
  void RequireEndMarker() const;
  [[noreturn]] void FailAsNoArchive() const;
  [[noreturn]] void Fail() const;

  vtq::FileDescriptor file_;
  std::unique_ptr<archive, int (*)(archive*)> archive_;
  archive_entry* entry_ = nullptr;
  bool hasStarted_ = false;
  std::uint64_t left_ = 0;  ///< unread bytes of the current file
  bool atHole_ = false;     ///< only zeros at the end of the current file are left
  std::vector<char> buffer_;
};

LibraryReader::LibraryReader(vtq::FileDescriptor file)
    : file_(std::move(file)),
      archive_(archive_read_new(), &archive_read_free),
      buffer_(kBlockSize) {
  SupportFormats(archive_.get());
  // It reads on to the end of the file, so that a compressed file that is cut off there is noticed.
  archive_read_set_option(archive_.get(), "tar", "read_concatenated_archives", "1");
}

void LibraryReader::Start() {
  if (std::exchange(hasStarted_, true)) return;
  if (archive_read_open_fd(archive_.get(), file_.Get(), kBlockSize) == ARCHIVE_OK) return;
  // libarchive's error for a format that it does not know
  if (archive_errno(archive_.get()) == EILSEQ) FailAsNoArchive();
  Fail();
}

std::optional<ArchiveEntry> LibraryReader::Next() {
  Start();
  const int result = archive_read_next_header(archive_.get(), &entry_);
  if (result == ARCHIVE_EOF) {
    RequireEndMarker();
    return std::nullopt;
  }
  if (result < ARCHIVE_WARN) Fail();
  ArchiveEntry entry{PathOf(entry_), KindOf(entry_), TargetOf(entry_), SizeOf(entry_)};
  left_ = entry.size;
  atHole_ = false;
  return entry;
}

std::string_view LibraryReader::Read() {
  if (atHole_) return ReadHole();
  const la_ssize_t count = archive_read_data(archive_.get(), buffer_.data(), buffer_.size());
  if (count < 0) Fail();
  const auto size = static_cast<std::size_t>(count);
  // The map of a sparse file may contradict its size.
  if (size > left_) throw BadCapture("it contains a file that is larger than its stated size");
  atHole_ = size == 0;
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

/// Two blocks of 512 zeros end an archive. libarchive does without, as if a cut between two entries
/// were the end.
void LibraryReader::RequireEndMarker() const {
  constexpr la_int64_t kMarker = 1024;
  const la_int64_t end = archive_filter_bytes(archive_.get(), 0);
  if (end - archive_read_header_position(archive_.get()) >= kMarker) return;
  throw BadCapture("it is cut off: the mark at the end of the archive is missing");
}

void LibraryReader::FailAsNoArchive() const {
  struct stat status {};
  const bool isEmptyFile =
      fstat(file_.Get(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size == 0;
  if (isEmptyFile) throw BadCapture("it is empty");
  throw BadCapture(
      "it is no archive that is known here; a capture is a .tar, .tar.gz or .tar.zst file that "
      "\"pciinfo capture\" wrote, or a directory");
}

void LibraryReader::Fail() const {
  const char* reason = archive_error_string(archive_.get());
  throw BadCapture(reason != nullptr ? reason : "it is damaged or cut off");
}

}  // namespace

std::unique_ptr<CaptureReader> OpenArchive(vtq::FileDescriptor file) {
  return std::make_unique<LibraryReader>(std::move(file));
}

}  // namespace pciinfo
