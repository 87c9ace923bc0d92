#pragma once

#include <string>
#include <vector>

namespace vtq {

/// Where programs are looked for, and the PATH that they get. Fixed, so that the caller's
/// environment cannot put another program in the place of a system tool.
inline constexpr const char* kProgramSearchPath = "/usr/sbin:/usr/bin:/sbin:/bin";

/// The words of a command, separated by blanks and tabs.
std::vector<std::string> SplitCommand(const std::string& command);

/// The file of the program `name`: an absolute path stands for itself, any other name is looked for
/// in kProgramSearchPath. Empty when there is no executable file of that name, or the name is a
/// relative path.
std::string FindProgram(const std::string& name);

}  // namespace vtq
