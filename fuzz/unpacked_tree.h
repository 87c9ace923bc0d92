// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/replay/archive_entry.h"

namespace fuzz {

/// Small, so that inputs reach the limits.
inline constexpr pciinfo::CaptureLimits kLimits{24, 64 << 10, 120};

/// Unpacks the capture `name` (see pciinfo::CaptureReader) to a temporary directory and reads its
/// manifest. Requires, whether or not it was refused, that only files, directories and links in the
/// expected places were created, that no link points outside them, and that no limit was exceeded.
void CheckCapture(const std::string& name);

}  // namespace fuzz
