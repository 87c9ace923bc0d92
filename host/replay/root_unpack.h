// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/capture/capture_tree.h"
#include "host/replay/capture_reader.h"

namespace pciinfo {

// Directories of the tree that a capture is unpacked to. The tree contains "proc" and "sys", which
// are later mounted over the machine's, and the program's own files in a directory of that "proc".
inline constexpr const char* kOwnDirectory = "proc/pciinfo";
inline constexpr const char* kCommandsDirectory = "proc/pciinfo/commands";
inline constexpr const char* kWorkDirectory = "proc/pciinfo/work";

/// Returns the path in the tree for a path in the capture; nothing for a part that is not unpacked.
/// Both paths are normalised.
std::optional<std::string> ServedPlace(const std::string& path);

struct Unpacked {
  std::optional<std::string> manifest;  ///< the text of manifest.json, if there is one
  std::uint64_t parts = 0;              ///< how many files and links were unpacked
};

/// Unpacks a capture to `tree`. Throws BadCapture for a
/// capture that is damaged, exceeds the limits, has a refused entry (see EntryGate), or contains
/// none of the parts that are unpacked; std::system_error when the tree cannot be written.
Unpacked UnpackCapture(CaptureReader& capture, CaptureTree& tree, const CaptureLimits& limits = {});

}  // namespace pciinfo
