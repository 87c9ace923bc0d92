#pragma once

#include <optional>
#include <string>

#include "framework/export.h"

namespace vtq {

/// From now on TOSSpecific::SpawnProcess runs nothing for a command of which `directory` holds a
/// recording: a regular file whose name is exactly the command's text. It answers the file's
/// content. A command without a recording runs as ever. An empty directory name ends it. A command
/// whose text is no plain file name (one with a slash) has no recording. Not thread-safe.
VTQ_EXPORT void ReplayCommandsFrom(std::string directory);

/// For SpawnProcess: the recorded output of a command; nothing when there is none. Throws
/// TVTQException when there is one that cannot be read.
std::optional<std::string> RecordedOutput(const std::string& command);

}  // namespace vtq
