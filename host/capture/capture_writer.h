#pragma once

#include <memory>

#include "framework/export.h"
#include "host/capture/capture_machine.h"

namespace pciinfo {

enum class Compression { kNone, kGzip, kZstd };

/// Takes parts of a capture and puts them where they are kept. All throw std::runtime_error when
/// that fails; ClosedPipe when whoever reads has closed the pipe.
class VTQ_EXPORT CaptureWriter {
 public:
  virtual ~CaptureWriter() = default;

  virtual void Write(const CapturePart& part) = 0;
  /// To be called once, after the last part.
  virtual void Finish() = 0;
};

/// A writer of a tar archive to a descriptor, which must stay open until it is gone. Every part is
/// written before the next one is taken.
std::unique_ptr<CaptureWriter> MakeArchiveWriter(int descriptor, Compression compression);

/// A writer of files below a directory, which must exist.
std::unique_ptr<CaptureWriter> MakeFolderWriter(const std::string& directory);

}  // namespace pciinfo
