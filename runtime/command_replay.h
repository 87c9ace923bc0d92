// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "framework/export.h"

namespace vtq {

/// Makes TOSSpecific::SpawnProcess return recorded outputs instead of running commands. A recording
/// is a regular file in `directory` whose name is exactly the text of the command. A command
/// without a recording runs as usual; so does one that contains a slash, because it cannot be a
/// file name. An empty directory name turns replaying off. Not thread-safe.
VTQ_EXPORT void ReplayCommandsFrom(std::string directory);

/// For SpawnProcess: returns the recorded output of a command; nothing if there is none. Throws
/// TVTQException if the recording cannot be read.
std::optional<std::string> RecordedOutput(const std::string& command);

}  // namespace vtq
