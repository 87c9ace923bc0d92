// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/capture/manifest.h"
#include "host/replay/archive_entry.h"

namespace pciinfo {

/// Where the output of commands comes from: from the capture, or from the tools of this machine.
enum class CommandSource { kRecorded, kLiveTools };

/// How a capture is to be served.
struct Replay {
  CommandSource commands = CommandSource::kRecorded;
  std::vector<std::string> files{};  ///< of this machine, to be opened later
  /// Takes the rights that this process needs no longer when this machine is hidden, and before an
  /// archive is parsed. Gets the directories that are written to.
  std::function<void(std::vector<std::string> writable)> confine = [](const auto&) {};
  CaptureLimits limits{};
};

/// Makes this process and its children see the machine of a capture: /proc/bus/pci, /proc/pci, the
/// whole of /sys and the system's name come from the capture; parts that the capture lacks do not
/// exist. Of this machine the programs and the users' files stay (see HideMachine). The working
/// directory becomes an empty directory in memory, which disappears with the process. Recorded
/// commands are replayed; with kLiveTools all commands run on the captured files.
///
/// `capture` is a directory, an archive, or "-" for an archive from standard input. The process
/// must have only one thread. Returns the manifest of the capture; an empty one if it has none.
/// Throws BadCapture, and std::runtime_error, which says what to do; the process must not continue
/// then, because it may be half moved.
Manifest ServeRoot(const std::string& capture, const Replay& replay);

}  // namespace pciinfo
