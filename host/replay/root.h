#pragma once

#include <string>

#include "host/capture/manifest.h"

namespace pciinfo {

/// Where recorded command outputs come from.
enum class CommandSource { kRecorded, kLiveTools };

/// From here on this process and its children see the machine of a capture: /proc/bus/pci,
/// /proc/pci, the whole of /sys and the system's name are the capture's, and what the capture lacks
/// is not there. The rest of the file system stays, except that the process finds itself in an
/// empty folder that is gone when it ends. Recorded commands are replayed, or, with kLiveTools, all
/// of them run on the captured files.
///
/// `capture` is a directory, an archive, or "-" for an archive from standard input. The process
/// must have one thread. Answers the capture's manifest; one of empty texts when it has none.
/// Throws std::runtime_error, which names the capture or says what to do; the process is then of no
/// further use.
Manifest ServeRoot(const std::string& capture, CommandSource commands);

}  // namespace pciinfo
