// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_target.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

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

void Require(bool done, const std::string& what) {
  if (!done) throw std::system_error(errno, std::generic_category(), what);
}

void CheckPlace(const std::string& name, TargetKind kind) {
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

CaptureTarget::CaptureTarget(const std::string& name) : name_(name) {
  // A directory may be given with a slash at its end.
  while (name_.size() > 1 && name_.ends_with('/')) name_.pop_back();
  if (name_.empty()) throw UsageError("the name of the capture is empty");
  form_ = FormOf(name_);
  if (form_.kind != TargetKind::kStandardOutput) CheckPlace(name_, form_.kind);
  Open();
}

CaptureTarget::~CaptureTarget() {
  writer_.reset();
  Abandon();
}

void CaptureTarget::Open() {
  switch (form_.kind) {
    case TargetKind::kStandardOutput:
      if (isatty(STDOUT_FILENO) != 0) {
        throw UsageError("refusing to write an archive to a terminal");
      }
      break;
    case TargetKind::kArchive:
      MakeTemporaryFile();
      break;
    case TargetKind::kDirectory:
      MakeTemporaryDirectory();
      break;
  }
}

CaptureWriter& CaptureTarget::GetWriter() {
  if (writer_) return *writer_;
  if (form_.kind == TargetKind::kDirectory) {
    writer_ = MakeFolderWriter(temporary_);
  } else {
    writer_ = MakeArchiveWriter(file_.IsOpen() ? file_.Get() : STDOUT_FILENO, form_.compression);
  }
  return *writer_;
}

std::vector<std::string> CaptureTarget::GetFolders() const {
  if (form_.kind != TargetKind::kDirectory) return {};
  return {temporary_};
}

void CaptureTarget::MakeTemporaryFile() {
  std::string pattern = name_ + ".part-XXXXXX";
  file_ = vtq::FileDescriptor(mkostemp(pattern.data(), O_CLOEXEC));
  Require(file_.IsOpen(), "cannot write " + name_);
  temporary_ = pattern;
}

void CaptureTarget::MakeTemporaryDirectory() {
  std::string pattern = name_ + ".part-XXXXXX";
  Require(mkdtemp(pattern.data()) != nullptr, "cannot write " + name_);
  temporary_ = pattern;
}

void CaptureTarget::Commit() {
  if (temporary_.empty()) return;
  if (file_.IsOpen()) Require(fsync(file_.Get()) == 0, "cannot write " + name_);
  Require(std::rename(temporary_.c_str(), name_.c_str()) == 0, "cannot write " + name_);
  temporary_.clear();
}

void CaptureTarget::Abandon() noexcept {
  if (temporary_.empty()) return;
  std::error_code ignored;
  fs::remove_all(std::exchange(temporary_, ""), ignored);
}

}  // namespace pciinfo
