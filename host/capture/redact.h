#pragma once

#include <stdexcept>
#include <string>

#include "host/capture/capture_machine.h"
#include "host/capture/manifest.h"

namespace pciinfo {

/// A part cannot be freed of what names the machine; `what()` says why.
class CannotRedact : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Blanks what tells this machine from all others of its kind, part by part, in the order in which
/// CaptureMachine hands them over. No part changes its length.
class Redactor final {
 public:
  /// Throws CannotRedact for SMBIOS tables whose structures cannot be found.
  void Redact(CapturePart& part);

 private:
  std::string entryPoint_;
};

/// Takes the system's name out of a manifest and notes that it describes a redacted capture.
void Redact(Manifest& manifest);

}  // namespace pciinfo
