// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/export.h"
#include "host/replay/archive_entry.h"

namespace pciinfo {

/// Reads a tar archive (uncompressed, gzip, bzip2, xz, lzma, zstd or lz4) or a directory, entry by
/// entry, in one pass. Does not check the entries.
class VTQ_EXPORT ArchiveReader {
 public:
  virtual ~ArchiveReader() = default;

  virtual bool IsDirectory() const noexcept = 0;

  /// Returns the next entry; nothing at the end. When it reads a directory, it descends only into
  /// those directories for which `Enter` was called. Throws BadCapture when the archive is damaged.
  virtual std::optional<ArchiveEntry> Next() = 0;

  /// Makes Next descend into the directory that it returned last. Has no effect on archives.
  virtual void Enter() = 0;

  /// Returns the next bytes of the file that Next returned last, in all no more than its size;
  /// empty at its end. Valid until the next call. Throws BadCapture when the archive is damaged.
  virtual std::string_view Read() = 0;
};

/// Opens `name` for reading: a file, a directory, or "-" for standard input. Throws BadCapture when
/// it does not exist. Nothing of an archive is read before the first call of Next, which throws
/// BadCapture when it is none.
std::unique_ptr<ArchiveReader> OpenArchive(const std::string& name);

}  // namespace pciinfo
