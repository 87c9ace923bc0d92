#pragma once

#include <string>

#include "host/replay/archive_entry.h"

namespace fuzz {

/// Small enough that inputs get there.
inline constexpr pciinfo::CaptureLimits kLimits{24, 64 << 10, 120};

/// Unpacks the capture `name` (see pciinfo::ArchiveReader) into a throw-away folder, reads its
/// manifest, and requires that, whether it was refused or not, nothing else came to be than files,
/// folders and links in the places that are served, that no link leads out of them, and that no
/// limit was passed.
void CheckCapture(const std::string& name);

}  // namespace fuzz
