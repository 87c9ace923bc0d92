// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/cli/options.h"

namespace CLI {
class App;
}

namespace pciinfo {

/// Which commands get their options. Making those of all takes a twentieth of the time of a short
/// run, and only one command can be on the command line.
enum class CommandsWithOptions { kAll, kParsed };

/// Adds all commands. With kParsed, those on the command line get their options when they are
/// parsed. Parsing fills `options`.
void AddCommands(CLI::App& app, Options& options, CommandsWithOptions which);

/// Adds the option --format, which takes one of `formats`, to a command or to the program.
void AddFormat(CLI::App& command, std::string& format, const std::vector<std::string>& formats);

}  // namespace pciinfo
