// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "host/base/exit_status.h"
#include "host/capture/capture_target.h"
#include "host/capture/manifest.h"
#include "host/process/worker.h"

namespace pciinfo {

/// What `pciinfo capture` was asked to do.
struct CaptureOrder {
  bool redact = false;
  /// The manifest of the capture that --root shows; empty for the real machine.
  std::optional<Manifest> origin;
};

/// Parts of the machine could not be read, and are not in the capture that was written.
inline constexpr auto kPartsUnread = static_cast<ExitStatus>(10);

/// Writes a capture; `target` is still to be committed then. What cannot be read is told on
/// standard error and listed in the manifest. Answers kAllCollected or kPartsUnread. Throws
/// ClosedPipe and std::exception when there is no capture in the end.
ExitStatus Capture(const CaptureOrder& order, CaptureTarget& target, Worker& worker);

}  // namespace pciinfo
