// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace pciinfo {

enum class EntryKind { kFile, kDirectory, kLink, kHardLink, kOther };

/// One entry of an archive, unchecked.
struct ArchiveEntry {
  std::string path;
  EntryKind kind = EntryKind::kOther;
  std::string target;      ///< of a link
  std::uint64_t size = 0;  ///< size of the unpacked file according to the archive
};

/// Limits of a capture. A machine of ten thousand functions needs a quarter of them.
struct CaptureLimits {
  std::uint64_t entries = 1'000'000;             ///< with the directories that their paths need
  std::uint64_t bytes = std::uint64_t{1} << 30;  ///< of contents and paths
  std::size_t pathLength = 1024;
  std::ptrdiff_t depth = 64;  ///< slashes in a path or in the target of a link
};

/// Limits of a capture that is unpacked to memory: half of these bytes for what the kernel keeps of
/// every entry, a quarter for contents and paths, as a small file takes a whole page. Nothing: the
/// limits above.
CaptureLimits LimitsWithin(const std::optional<std::uint64_t>& memory);

/// Checks the entries of one archive before they are unpacked.
class EntryGate final {
 public:
  explicit EntryGate(const CaptureLimits& limits = {}) : limits_(limits) {}

  /// Returns the normalised path of the entry below the capture's root ("sys/bus"; "" for the root
  /// itself). Throws BadCapture, naming the entry, for a path that is absolute or contains "..",
  /// for a symbolic link that is not an inner link (see IsInnerLink), for anything else than a
  /// file, a directory or a symbolic link, and when a limit is exceeded.
  std::string Admit(const ArchiveEntry& entry);

  /// Takes note of how many directories were made in all, so that they count too. Throws
  /// BadCapture when there are too many entries.
  void CountDirectories(std::uint64_t directories) const;

 private:
  void Count(const ArchiveEntry& entry);
  [[noreturn]] void RefuseEntries() const;

  CaptureLimits limits_;
  std::uint64_t entries_ = 0;
  std::uint64_t bytes_ = 0;
};

/// Whether a symbolic link at `path` (normalised) stays inside the captured /sys: the link and its
/// target are below "sys/", and the target is relative and has ".." only at its beginning. A chain
/// of such links cannot leave "sys/" either, as long as no parent directory of a link is itself a
/// link.
bool IsInnerLink(const std::string& path, const std::string& target);

}  // namespace pciinfo
