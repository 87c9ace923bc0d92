// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_target.h"

#include <unistd.h>

#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "host/base/errors.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

struct Suffix {
  std::string_view text;
  Compression compression;
};

constexpr std::array<Suffix, 4> kSuffixes = {{{".tar", Compression::kNone},
                                              {".tar.gz", Compression::kGzip},
                                              {".tgz", Compression::kGzip},
                                              {".tar.zst", Compression::kZstd}}};

void CheckTerminal() {
  if (isatty(STDOUT_FILENO) != 0) throw UsageError("refusing to write an archive to a terminal");
}

void CheckPlace(const std::string& name, TargetKind kind) {
  if (kind == TargetKind::kStandardOutput) return CheckTerminal();
  std::error_code ignored;
  const fs::file_status status = fs::status(name, ignored);
  if (!fs::exists(status)) return;
  if (kind == TargetKind::kArchive && !fs::is_regular_file(status)) {
    throw UsageError(name + " exists and is not a regular file");
  }
  if (kind == TargetKind::kArchive) return;
  if (!fs::is_directory(status)) {
    throw UsageError(name +
                     " exists and is not a directory (names of archives end in "
                     ".tar.zst, .tar.gz or .tar)");
  }
  if (!fs::is_empty(name)) throw UsageError("the directory " + name + " is not empty");
}

}  // namespace

TargetForm FormOf(const std::string& name) {
  if (name == "-") return {TargetKind::kStandardOutput, Compression::kNone};
  for (const Suffix& suffix : kSuffixes) {
    if (name.ends_with(suffix.text)) return {TargetKind::kArchive, suffix.compression};
  }
  const std::string file = fs::path(name).filename();
  if (file.find(".tar.") != std::string::npos || file.ends_with(".zip")) {
    throw UsageError(name + ": unsupported kind of archive: use .tar.zst, .tar.gz or .tar");
  }
  return {TargetKind::kDirectory, Compression::kNone};
}

CaptureTarget::CaptureTarget(const std::string& name) {
  // A directory may be given with a slash at its end.
  std::string path = name;
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  if (path.empty()) throw UsageError("the name of the capture is empty");
  form_ = FormOf(path);
  CheckPlace(path, form_.kind);
  if (form_.kind == TargetKind::kArchive) file_.emplace(path);
  if (form_.kind == TargetKind::kDirectory) directory_.emplace(path);
}

CaptureWriter& CaptureTarget::GetWriter() {
  if (writer_) return *writer_;
  if (directory_) {
    writer_ = MakeDirectoryWriter(directory_->GetDirectory());
  } else {
    writer_ = MakeArchiveWriter(file_ ? file_->GetFile().Get() : STDOUT_FILENO, form_.compression);
  }
  return *writer_;
}

std::vector<std::string> CaptureTarget::GetDirectories() const {
  if (!directory_) return {};
  return {directory_->GetTemporaryPath()};
}

void CaptureTarget::Commit() {
  if (file_) file_->Commit();
  if (directory_) directory_->Commit();
}

}  // namespace pciinfo
