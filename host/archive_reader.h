#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/archive_entry.h"
#include "runtime/file_descriptor.h"

struct archive;
struct archive_entry;

namespace pciinfo {

/// Reads a tar archive (uncompressed, gzip, bzip2, xz, lzma, zstd or lz4) or a directory, entry by
/// entry, in one pass. What it answers is as the archive has it, unchecked.
class ArchiveReader final {
 public:
  /// `name` is a file, a directory, or "-" for standard input. Files are open from now on. Throws
  /// BadCapture when there is no such thing or it is no tar archive.
  explicit ArchiveReader(const std::string& name);

  bool IsDirectory() const noexcept { return !directory_.empty(); }

  /// The next entry; nothing at the end. In a directory, only folders that `Enter` was called for
  /// are gone into. Throws BadCapture when the archive is damaged.
  std::optional<ArchiveEntry> Next();

  /// Goes into the folder that Next answered last. Without meaning for archives.
  void Enter();

  /// The next bytes of the file that Next answered last, never more than it said; empty at its end.
  /// Valid until the next call. Throws BadCapture when the archive is damaged.
  std::string_view Read();

 private:
  void OpenDirectory(const std::string& name);
  void OpenArchive(const std::string& name);
  std::string_view ReadHole();
  [[noreturn]] void Fail() const;

  std::unique_ptr<archive, int (*)(archive*)> archive_;
  archive_entry* entry_ = nullptr;
  std::uint64_t left_ = 0;  ///< of the file that Next answered last
  bool atHole_ = false;     ///< only the zeros at that file's end are left
  vtq::FileDescriptor file_;
  std::string directory_;  ///< with a slash at its end; empty for an archive
  std::vector<char> buffer_;
};

}  // namespace pciinfo
