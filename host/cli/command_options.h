// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/cli/options.h"

namespace CLI {
class App;
}

namespace pciinfo {

/// Which commands get their options: all of them, or the one on the command line. To make the
/// options of all commands takes a twentieth of the time of a short run.
enum class CommandsWithOptions { kAll, kParsed };

/// Adds all commands. With kParsed, a command gets its options when the parser meets its name.
/// Parsing fills `options`.
void AddCommands(CLI::App& app, Options& options, CommandsWithOptions which);

/// Adds the option --format, which takes one of `formats`, to a command or to the program.
void AddFormat(CLI::App& command, std::string& format, const std::vector<std::string>& formats);

}  // namespace pciinfo
