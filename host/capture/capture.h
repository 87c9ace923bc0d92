#pragma once

#include <optional>
#include <string>

#include "host/base/exit_status.h"
#include "host/capture/manifest.h"

namespace pciinfo {

/// What to capture.
struct CaptureOrder {
  std::string file;  ///< see CaptureTarget
  bool redact = false;
  /// Of the capture that the machine is served from; none for the real machine.
  std::optional<Manifest> origin;
};

/// Makes a capture. What cannot be read is told on standard error and listed in the manifest.
/// Throws UsageError, ClosedPipe and std::exception when there is no capture in the end.
ExitStatus Capture(const CaptureOrder& order);

}  // namespace pciinfo
