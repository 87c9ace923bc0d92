// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace vtq {

/// The directories in which programs are searched, and their PATH. Fixed, so that the caller's
/// environment cannot replace a system tool by another program.
inline constexpr const char* kProgramSearchPath = "/usr/sbin:/usr/bin:/sbin:/bin";

/// Splits a command into words, which spaces and tabs separate.
std::vector<std::string> SplitCommand(const std::string& command);

/// Returns the file of the program `name`: an absolute path is returned as it is; any other name is
/// searched in kProgramSearchPath. Empty if there is no executable file of that name, or if the
/// name is a relative path.
std::string FindProgram(const std::string& name);

}  // namespace vtq
