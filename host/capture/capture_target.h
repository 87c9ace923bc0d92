// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/capture/capture_writer.h"
#include "host/capture/new_entry.h"

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

/// The place of a new capture, which has its name only when it is committed (see NewFile and
/// NewDirectory); a target that was not committed leaves nothing behind. Only its owner may read a
/// capture: it shows what the kernel shows to root only. A process that is forked from the one that
/// made the target may write the capture, and what it leaves when it fails is removed here.
class CaptureTarget final {
 public:
  /// Throws UsageError for a name that FormOf refuses, for a terminal, and for a name that exists
  /// and is neither an empty directory (for a directory) nor a regular file (for an archive);
  /// std::system_error when it cannot be written.
  explicit CaptureTarget(const std::string& name);

  /// The writer, made when it is first asked for. Throws what MakeArchiveWriter throws.
  CaptureWriter& GetWriter();

  /// Returns the directory that files are made in, if the capture is one.
  std::vector<std::string> GetDirectories() const;

  /// Gives the capture, whose writer has finished, its name. Throws std::system_error.
  void Commit();

 private:
  TargetForm form_;
  std::optional<NewFile> file_;
  std::optional<NewDirectory> directory_;
  std::unique_ptr<CaptureWriter> writer_;  ///< of one of these, so destroyed before them
};

}  // namespace pciinfo
