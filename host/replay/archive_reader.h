#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/export.h"
#include "host/replay/archive_entry.h"

namespace pciinfo {

/// Reads a tar archive (uncompressed, gzip, bzip2, xz, lzma, zstd or lz4) or a directory, entry by
/// entry, in one pass. What it answers is as the archive has it, unchecked.
class VTQ_EXPORT ArchiveReader {
 public:
  virtual ~ArchiveReader() = default;

  virtual bool IsDirectory() const noexcept = 0;

  /// The next entry; nothing at the end. In a directory, only folders that `Enter` was called for
  /// are gone into. Throws BadCapture when the archive is damaged.
  virtual std::optional<ArchiveEntry> Next() = 0;

  /// Goes into the folder that Next answered last. Without meaning for archives.
  virtual void Enter() = 0;

  /// The next bytes of the file that Next answered last, never more than it said; empty at its end.
  /// Valid until the next call. Throws BadCapture when the archive is damaged.
  virtual std::string_view Read() = 0;
};

/// A reader of `name`: a file, a directory, or "-" for standard input. Files are open from now on.
/// Throws BadCapture when there is no such thing or it is no tar archive.
std::unique_ptr<ArchiveReader> OpenArchive(const std::string& name);

}  // namespace pciinfo
