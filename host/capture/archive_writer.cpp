// SPDX-License-Identifier: Apache-2.0
#include <archive.h>
#include <archive_entry.h>

#include <cerrno>
#include <ctime>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include "host/capture/capture_writer.h"
#include "host/console/output.h"

namespace pciinfo {
namespace {

constexpr int kFileMode = 0644;
constexpr int kLinkMode = 0777;

using Entry = std::unique_ptr<archive_entry, void (*)(archive_entry*)>;

Entry MakeEntry(const CapturePart& part, std::time_t now) {
  Entry entry(archive_entry_new(), &archive_entry_free);
  const bool isLink = !part.target.empty();
  archive_entry_set_pathname(entry.get(), part.path.c_str());
  archive_entry_set_filetype(entry.get(), isLink ? AE_IFLNK : AE_IFREG);
  archive_entry_set_perm(entry.get(), isLink ? kLinkMode : kFileMode);
  archive_entry_set_mtime(entry.get(), now, 0);
  if (isLink) archive_entry_set_symlink(entry.get(), part.target.c_str());
  archive_entry_set_size(entry.get(), static_cast<la_int64_t>(part.content.size()));
  return entry;
}

/// libarchive does not free all its memory after a failed write. So its write callback always
/// reports success, the error is kept here, and later blocks are dropped.
class ArchiveWriter final : public CaptureWriter {
 public:
  ArchiveWriter(int descriptor, Compression compression)
      : descriptor_(descriptor), archive_(archive_write_new(), &archive_write_free) {
    Require(archive_write_set_format_pax_restricted(archive_.get()));
    if (compression == Compression::kGzip) Require(archive_write_add_filter_gzip(archive_.get()));
    if (compression == Compression::kZstd) Require(archive_write_add_filter_zstd(archive_.get()));
    archive_write_set_bytes_in_last_block(archive_.get(), 1);
    Require(archive_write_open2(archive_.get(), this, nullptr, &Take, nullptr, nullptr));
  }
  ArchiveWriter(const ArchiveWriter&) = delete;
  ArchiveWriter& operator=(const ArchiveWriter&) = delete;
  // Destroying archive_ writes what libarchive has buffered; TakeBlock drops it.
  ~ArchiveWriter() override { dropping_ = true; }

  void Write(const CapturePart& part) override {
    Require(archive_write_header(archive_.get(), MakeEntry(part, now_).get()));
    if (part.content.empty()) return;
    const la_ssize_t written =
        archive_write_data(archive_.get(), part.content.data(), part.content.size());
    Require(written < 0 ? ARCHIVE_FATAL : ARCHIVE_OK);
  }

  void Finish() override { Require(archive_write_close(archive_.get())); }

 private:
  static la_ssize_t Take(archive* /*writer*/, void* self, const void* bytes, std::size_t size) {
    static_cast<ArchiveWriter*>(self)->TakeBlock({static_cast<const char*>(bytes), size});
    return static_cast<la_ssize_t>(size);
  }

  void TakeBlock(std::string_view block) noexcept {
    if (dropping_) return;
    error_ = WriteAll(descriptor_, block);
    dropping_ = error_ != 0;
  }

  void Require(int result) const {
    if (error_ == EPIPE) throw ClosedPipe();
    if (error_ != 0) throw std::system_error(error_, std::generic_category(), kFailure);
    // After a warning the result is usable.
    if (result >= ARCHIVE_WARN) return;
    const char* reason = archive_error_string(archive_.get());
    throw std::runtime_error(std::string(kFailure) + ": " + (reason != nullptr ? reason : "?"));
  }

  static constexpr const char* kFailure = "cannot write the capture";

  int descriptor_;
  int error_ = 0;
  bool dropping_ = false;
  std::time_t now_ = std::time(nullptr);
  std::unique_ptr<archive, int (*)(archive*)> archive_;  // last member: freeing it calls Take
};

}  // namespace

std::unique_ptr<CaptureWriter> MakeArchiveWriter(int descriptor, Compression compression) {
  return std::make_unique<ArchiveWriter>(descriptor, compression);
}

}  // namespace pciinfo
