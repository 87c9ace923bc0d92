#pragma once

#include <optional>
#include <string>

#include "host/base/exit_status.h"
#include "host/capture/manifest.h"

namespace pciinfo {

/// What `pciinfo capture` was asked to do.
struct CaptureOrder {
  std::string file;  ///< see CaptureTarget
  bool redact = false;
  /// The manifest of the capture that --root shows; empty for the real machine.
  std::optional<Manifest> origin;
};

/// Makes a capture. Parts that cannot be read are reported on standard error and listed in the
/// manifest. Throws UsageError, ClosedPipe or another std::exception when no capture was made.
ExitStatus Capture(const CaptureOrder& order);

}  // namespace pciinfo
