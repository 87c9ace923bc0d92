#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "framework/export.h"

namespace pciinfo {

/// A capture cannot be used; `what()` says why, without naming the capture.
class VTQ_EXPORT BadCapture : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A part of the machine that a capture had to leave out.
struct UnreadPart {
  std::string path;  ///< where it would stand in the capture
  std::string reason;
};

/// What a capture says about itself. docs/captures.md describes its form.
struct Manifest {
  std::string systemName;  ///< fully qualified where the machine knows its domain; may be empty
  std::string kernelRelease;
  std::string capturedAt;                    ///< UTC, "2026-01-31T23:59:59Z"
  std::map<std::string, std::string> tools;  ///< version by program
  bool redacted = false;
  std::vector<UnreadPart> unread;
};

inline constexpr const char* kManifestFile = "manifest.json";

/// The manifest of this machine, now, without unread parts.
Manifest DescribeThisMachine();

/// A manifest as JSON with a line end.
std::string ManifestJson(const Manifest& manifest);

/// Reads a manifest; keys that are missing or unknown do no harm. Throws BadCapture for what is no
/// manifest or is nested deeper than any, for a format version that this program does not know, and
/// for a system name that no system can have.
Manifest ParseManifest(std::string_view text);

}  // namespace pciinfo
