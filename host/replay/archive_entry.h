#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace pciinfo {

enum class EntryKind { kFile, kFolder, kLink, kHardLink, kOther };

/// One entry of an archive, as the archive has it: nothing of it can be trusted.
struct ArchiveEntry {
  std::string path;
  EntryKind kind = EntryKind::kOther;
  std::string target;      ///< of a link
  std::uint64_t size = 0;  ///< bytes that a file says it unpacks to
};

/// How much a capture may hold. A machine of ten thousand functions takes a quarter of it.
struct CaptureLimits {
  std::uint64_t entries = 1'000'000;
  std::uint64_t bytes = std::uint64_t{1} << 30;
  std::size_t pathLength = 1024;
};

/// Lets those entries of one archive pass that can do no harm.
class EntryGate final {
 public:
  explicit EntryGate(const CaptureLimits& limits = {}) : limits_(limits) {}

  /// The entry's path below the capture's root in its plain form ("sys/bus", "" for the root
  /// itself). Throws BadCapture, naming the entry, for a path that is absolute or goes up, for a
  /// link other than those that IsInnerLink allows, for everything that is no file, folder or
  /// link, and for an archive that is over a limit.
  std::string Admit(const ArchiveEntry& entry);

 private:
  void Count(const ArchiveEntry& entry);

  CaptureLimits limits_;
  std::uint64_t entries_ = 0;
  std::uint64_t bytes_ = 0;
};

/// Whether a symbolic link at `path` (in its plain form) stays inside of the captured /sys: both
/// stand in "sys/", and the target is relative and goes up at its beginning only. Such links have
/// no way out, however many are chained, as long as no folder on the way to one is itself a link.
bool IsInnerLink(const std::string& path, const std::string& target);

}  // namespace pciinfo
