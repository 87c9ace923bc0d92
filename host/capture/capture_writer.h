// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "framework/export.h"
#include "host/capture/capture_machine.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {

enum class Compression { kNone, kGzip, kZstd };

/// Writes the parts of a capture. All functions throw std::runtime_error when that fails, and
/// ClosedPipe when the reader has closed the pipe.
class VTQ_EXPORT CaptureWriter {
 public:
  virtual ~CaptureWriter() = default;

  virtual void Write(const CapturePart& part) = 0;
  /// Call once, after the last part.
  virtual void Finish() = 0;
};

/// Returns a writer of a tar archive. `descriptor` must stay open until the writer is destroyed.
/// Every part is written before Write returns.
std::unique_ptr<CaptureWriter> MakeArchiveWriter(int descriptor, Compression compression);

/// Returns a writer of files below an open directory.
std::unique_ptr<CaptureWriter> MakeDirectoryWriter(const vtq::FileDescriptor& directory);

}  // namespace pciinfo
