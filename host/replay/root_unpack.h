#pragma once

#include <optional>
#include <string>

#include "host/capture/capture_tree.h"
#include "host/replay/archive_reader.h"

namespace pciinfo {

// Folders of the tree that a capture is served from. It holds "proc" and "sys", which are to stand
// in the place of the machine's, and what the program itself keeps in a folder of that "proc".
inline constexpr const char* kOwnFolder = "proc/pciinfo";
inline constexpr const char* kCommandsFolder = "proc/pciinfo/commands";

/// Where a part of a capture goes in the tree that it is served from; nothing for a part that is
/// not served. Both paths are in their plain form.
std::optional<std::string> ServedPlace(const std::string& path);

/// Writes what is served of a capture to `tree`; answers its manifest.json, if it has one. Throws
/// BadCapture for a capture that is damaged, is over the limits, could do harm, or holds nothing
/// that is served; std::system_error when the tree cannot be written.
std::optional<std::string> UnpackCapture(ArchiveReader& capture, CaptureTree& tree,
                                         const CaptureLimits& limits = {});

}  // namespace pciinfo
