// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

/// One file or link of a capture.
struct CapturePart {
  std::string path;  ///< below the capture's root: "proc/bus/pci/devices"
  std::string content;
  std::string target;  ///< of a symbolic link; empty for a file
};

/// Receives the parts of a machine one after the other.
class CaptureReceiver {
 public:
  virtual ~CaptureReceiver() = default;

  /// Says what is read next, for the progress line.
  virtual void Begin(const std::string& what) = 0;
  virtual void Add(CapturePart part) = 0;
  /// Reports a part that exists and cannot be read, or not wholly.
  virtual void NoteUnread(const std::string& path, const std::string& reason) = 0;
};

/// Reads everything that the plug-in and the tools that it runs read from this machine, once, and
/// passes it to the receiver in the order of docs/captures.md. Skips silently what the machine
/// lacks. Throws what the receiver throws.
void CaptureMachine(CaptureReceiver& receiver);

}  // namespace pciinfo
