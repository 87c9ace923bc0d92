#pragma once

#include <memory>
#include <string>

#include "host/capture/capture_writer.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {

enum class TargetKind { kStandardOutput, kArchive, kDirectory };

/// How a capture of that name is kept.
struct TargetForm {
  TargetKind kind = TargetKind::kDirectory;
  Compression compression = Compression::kNone;
};

/// The form that a name asks for: "-" is standard output, an uncompressed archive; ".tar",
/// ".tar.gz", ".tgz" and ".tar.zst" at its end are archives; all else is a directory. Throws
/// UsageError for archives of other kinds.
TargetForm FormOf(const std::string& name);

/// The place of a new capture. Until it is committed, all is written beside it under a temporary
/// name; a target that was not committed leaves nothing behind. Only its owner may read a capture:
/// it shows what the kernel shows to root only. A process that is forked from the one that made
/// the target may write and commit the capture: what it leaves when it fails is removed here.
class CaptureTarget final {
 public:
  /// Throws UsageError for a name that FormOf refuses, for a terminal, and for a place that is
  /// taken by something else than an old capture (a directory must be empty, an archive's name must
  /// stand for a file); std::system_error when nothing can be written there.
  explicit CaptureTarget(const std::string& name);
  CaptureTarget(const CaptureTarget&) = delete;
  CaptureTarget& operator=(const CaptureTarget&) = delete;
  ~CaptureTarget();

  /// The writer, made when it is first asked for. Throws what MakeArchiveWriter throws.
  CaptureWriter& GetWriter();

  /// Finishes the writer and gives the capture its name. Throws like the writer.
  void Commit();

 private:
  void Open();
  /// Removes what was written.
  void Abandon() noexcept;
  void MakeTemporaryFile();
  void MakeTemporaryDirectory();

  std::string name_;
  TargetForm form_;
  std::string temporary_;  ///< empty when there is none (any more)
  vtq::FileDescriptor file_;
  std::unique_ptr<CaptureWriter> writer_;
};

}  // namespace pciinfo
