// SPDX-License-Identifier: Apache-2.0
#include "host/replay/root_unpack.h"

#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "host/capture/manifest.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargestManifest = 1 << 20;

/// The directories and files of a capture that are unpacked.
constexpr std::array<std::string_view, 5> kServed = {"proc/bus/pci", "proc/pci", "sys", "commands",
                                                     "etc/machine-id"};

bool IsWithin(std::string_view path, std::string_view directory) {
  return path.starts_with(directory) &&
         (path.size() == directory.size() || path[directory.size()] == '/');
}

bool IsServed(std::string_view path) {
  for (const std::string_view part : kServed) {
    if (IsWithin(path, part)) return true;
  }
  return false;
}

/// Whether this directory can contain something that is unpacked.
bool LeadsToServed(std::string_view directory) {
  return directory.empty() || directory == "proc" || directory == "proc/bus" ||
         directory == "etc" || IsServed(directory);
}

void UnpackFile(CaptureReader& capture, const vtq::FileDescriptor& file) {
  for (std::string_view block = capture.Read(); !block.empty(); block = capture.Read()) {
    WriteBytes(file, block);
  }
}

std::string ReadManifest(CaptureReader& capture) {
  std::string text;
  for (std::string_view block = capture.Read(); !block.empty(); block = capture.Read()) {
    text += block;
    if (text.size() > kLargestManifest) throw BadCapture("its manifest.json is too large");
  }
  return text;
}

bool IsOfCapture(std::string_view path) { return LeadsToServed(path) || path == kManifestFile; }

/// Unpacks the entries of one capture.
class Unpacking final {
 public:
  Unpacking(CaptureReader& capture, CaptureTree& tree, const CaptureLimits& limits)
      : capture_(capture), tree_(tree), gate_(limits) {}

  std::string Admit(const ArchiveEntry& entry) { return gate_.Admit(entry); }

  void Unpack(const ArchiveEntry& entry, const std::string& place) {
    if (entry.kind == EntryKind::kFile) UnpackFile(capture_, tree_.MakeFile(place));
    if (entry.kind == EntryKind::kDirectory) tree_.MakeDirectory(place);
    if (entry.kind == EntryKind::kLink) {
      tree_.MakeLink(place, entry.target);
      links_.push_back(fs::path(place).parent_path() / entry.target);
    }
    const bool isCounted = entry.kind != EntryKind::kDirectory && !place.ends_with(kMachineIdFile);
    if (isCounted) ++parts_;
    isEmpty_ = false;
    gate_.CountDirectories(tree_.GetDirectories());
  }

  /// The driver link of a function points to the directory of the driver, which a capture need not
  /// contain. It is made here, because tools treat a broken link as "no driver".
  void CompleteLinks() {
    for (const fs::path& target : links_) {
      try {
        tree_.MakeDirectory(target.lexically_normal());
      } catch (const std::system_error&) {
        // Something else has this path, so the link is broken in the capture too.
        continue;
      }
      gate_.CountDirectories(tree_.GetDirectories());
    }
  }

  bool IsEmpty() const noexcept { return isEmpty_; }
  std::uint64_t GetParts() const noexcept { return parts_; }

 private:
  CaptureReader& capture_;
  CaptureTree& tree_;
  EntryGate gate_;
  std::uint64_t parts_ = 0;
  std::vector<fs::path> links_;
  bool isEmpty_ = true;
};

}  // namespace

std::optional<std::string> ServedPlace(const std::string& path) {
  if (!IsServed(path)) return std::nullopt;
  const bool isOwn = IsWithin(path, "commands") || IsWithin(path, "etc");
  return isOwn ? std::string(kOwnDirectory) + "/" + path : path;
}

Unpacked UnpackCapture(CaptureReader& capture, CaptureTree& tree, const CaptureLimits& limits) {
  Unpacking unpacking(capture, tree, limits);
  std::optional<std::string> manifest;
  while (const std::optional<ArchiveEntry> entry = capture.Next()) {
    // A directory may contain other files; they are neither read nor checked.
    if (capture.IsDirectory() && !IsOfCapture(entry->path)) continue;
    const std::string path = unpacking.Admit(*entry);
    if (entry->kind == EntryKind::kDirectory && LeadsToServed(path)) capture.Enter();
    if (path == kManifestFile && entry->kind == EntryKind::kFile) manifest = ReadManifest(capture);
    if (const auto place = ServedPlace(path)) unpacking.Unpack(*entry, *place);
  }
  if (unpacking.IsEmpty() && !manifest) {
    throw BadCapture("it contains no proc/bus/pci, proc/pci, sys, commands or manifest.json");
  }
  unpacking.CompleteLinks();
  return {std::move(manifest), unpacking.GetParts()};
}

}  // namespace pciinfo
