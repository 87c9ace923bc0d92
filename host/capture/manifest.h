// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "framework/export.h"

namespace pciinfo {

/// Thrown for a capture that cannot be used; `what()` says why, without naming the capture.
class VTQ_EXPORT BadCapture : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A part of the machine that could not be read.
struct UnreadPart {
  std::string path;  ///< its path in the capture
  std::string reason;
};

/// The content of manifest.json, which docs/captures.md describes.
struct Manifest {
  std::string systemName;  ///< fully qualified if the machine knows its domain; may be empty
  std::string kernelRelease;
  std::string capturedAt;                    ///< UTC, "2026-01-31T23:59:59Z"
  std::map<std::string, std::string> tools;  ///< version by program
  bool redacted = false;
  std::vector<UnreadPart> unread;
  /// How many files and links the capture has besides the manifest. A hand-made one need not say.
  std::optional<std::uint64_t> parts;
};

inline constexpr const char* kManifestFile = "manifest.json";

/// The machine's ID. It is not one of the parts that a manifest counts: programs that do not know
/// it must find as many parts as the manifest says.
inline constexpr const char* kMachineIdFile = "etc/machine-id";

/// Returns the manifest of this machine at this time, without unread parts.
Manifest DescribeThisMachine();

/// Returns a manifest as JSON with a line end.
std::string ManifestJson(const Manifest& manifest);

/// Reads a manifest; ignores missing and unknown keys. Throws BadCapture for a text that is not a
/// manifest, is nested too deeply, or has an unknown format version or an invalid system name.
Manifest ParseManifest(std::string_view text);

}  // namespace pciinfo
