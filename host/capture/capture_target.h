#pragma once

#include <memory>
#include <string>

#include "host/capture/capture_writer.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {

enum class TargetKind { kStandardOutput, kArchive, kDirectory };

/// The form in which a capture is stored.
struct TargetForm {
  TargetKind kind = TargetKind::kDirectory;
  Compression compression = Compression::kNone;
};

/// Returns the form for a name: "-" is an uncompressed archive to standard output; names that end
/// in ".tar", ".tar.gz", ".tgz" and ".tar.zst" are archives; all others are directories. Throws
/// UsageError for names of other kinds of archives.
TargetForm FormOf(const std::string& name);

/// The destination of a new capture. Until Commit, everything is written next to it under a
/// temporary name; the destructor removes a capture that was not committed. Only its owner may read
/// a capture, because it holds data that the kernel shows to root only.
class CaptureTarget final {
 public:
  /// Throws UsageError for a name that FormOf refuses, for a terminal, and for a name that exists
  /// and is neither an empty directory (for a directory) nor a regular file (for an archive);
  /// std::system_error when it cannot be written.
  explicit CaptureTarget(const std::string& name);
  CaptureTarget(const CaptureTarget&) = delete;
  CaptureTarget& operator=(const CaptureTarget&) = delete;
  ~CaptureTarget();

  CaptureWriter& GetWriter() noexcept { return *writer_; }

  /// Finishes the writer and gives the capture its name. Throws like the writer.
  void Commit();

  /// Removes what was written. After it, only the destructor may be called.
  void Abandon() noexcept;

 private:
  void Open(const TargetForm& form);
  void MakeTemporaryFile();
  void MakeTemporaryDirectory();

  std::string name_;
  std::string temporary_;  ///< empty when there is no temporary file (any more)
  vtq::FileDescriptor file_;
  std::unique_ptr<CaptureWriter> writer_;
};

}  // namespace pciinfo
