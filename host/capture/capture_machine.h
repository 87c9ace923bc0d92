#pragma once

#include <string>

namespace pciinfo {

/// One file or link of a capture.
struct CapturePart {
  std::string path;  ///< below the capture's root: "proc/bus/pci/devices"
  std::string content;
  std::string target;  ///< of a symbolic link; empty for a file
};

/// Takes the parts of a machine one after the other.
class CaptureReceiver {
 public:
  virtual ~CaptureReceiver() = default;

  /// What is being read from now on, in words.
  virtual void Begin(const std::string& what) = 0;
  virtual void Add(CapturePart part) = 0;
  /// A part that is there and cannot be read.
  virtual void NoteUnread(const std::string& path, const std::string& reason) = 0;
};

/// Reads everything that the plug-in and the tools beside it read of this machine, each thing once,
/// and hands it over in the order of docs/captures.md. What the machine does not have is passed
/// over in silence. Throws what the receiver throws.
void CaptureMachine(CaptureReceiver& receiver);

}  // namespace pciinfo
