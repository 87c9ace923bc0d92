// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/export.h"
#include "host/replay/archive_entry.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {

/// Reads a capture entry by entry, in one pass. Does not check the entries.
class VTQ_EXPORT CaptureReader {
 public:
  virtual ~CaptureReader() = default;

  virtual bool IsDirectory() const noexcept = 0;

  /// Returns the next entry; nothing at the end. When it reads a directory, it descends only into
  /// those directories for which `Enter` was called. Throws BadCapture when the archive is damaged
  /// or ends too early, or the directory cannot be read.
  virtual std::optional<ArchiveEntry> Next() = 0;

  /// Makes Next descend into the directory that it returned last. Has no effect on archives.
  virtual void Enter() = 0;

  /// Returns the next bytes of the file that Next returned last, in all no more than its size;
  /// empty at its end. Valid until the next call. Throws like Next.
  virtual std::string_view Read() = 0;
};

/// Opens `name` for reading: a file, a directory, or "-" for standard input. Throws BadCapture when
/// it does not exist. Nothing of an archive is read before the first call of Next, which throws
/// BadCapture when it is none.
std::unique_ptr<CaptureReader> OpenCapture(const std::string& name);

/// Reads an open tar archive (uncompressed, gzip, bzip2, xz, lzma, zstd or lz4), see OpenCapture.
std::unique_ptr<CaptureReader> OpenArchive(vtq::FileDescriptor file);

/// Reads an open directory, without following links or waiting for pipes and devices in it,
/// whatever somebody exchanges in it meanwhile. Throws BadCapture for the root of this machine.
std::unique_ptr<CaptureReader> OpenDirectory(vtq::FileDescriptor directory);

}  // namespace pciinfo
