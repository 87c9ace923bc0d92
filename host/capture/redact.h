// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>

#include "host/capture/capture_machine.h"
#include "host/capture/manifest.h"

namespace pciinfo {

/// Thrown for a part that cannot be redacted; `what()` says why.
class CannotRedact : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Blanks the data that identifies this machine: serial numbers, asset tags, UUIDs, link-layer
/// addresses. Takes the parts in the order of CaptureMachine. No part changes its length.
class Redactor final {
 public:
  /// Throws CannotRedact for SMBIOS tables whose structures cannot be found, and for parts whose
  /// path contains a link-layer address.
  void Redact(CapturePart& part);

 private:
  std::string entryPoint_;
};

/// Removes the system's name from a manifest and marks the capture as redacted.
void Redact(Manifest& manifest);

}  // namespace pciinfo
