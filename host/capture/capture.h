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

/// Makes a capture. What cannot be read is told on standard error and listed in the manifest.
/// Throws ClosedPipe and std::exception when there is no capture in the end.
ExitStatus Capture(const CaptureOrder& order, CaptureTarget& target, Worker& worker);

}  // namespace pciinfo
