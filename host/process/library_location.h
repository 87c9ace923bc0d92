// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace pciinfo {

/// Where the library `file` that belongs to a program in `programDirectory` may be, best place
/// first: beside the program, in the lib directory beside the program's, where it is installed with
/// it.
std::vector<std::string> LibraryPlaces(const std::string& programDirectory,
                                       const std::string& file);

/// The directories that may hold the plug-ins of a program in `programDirectory`, best place first:
/// in the lib directory beside the program's, where it is installed with it. Each once.
std::vector<std::string> PluginDirectories(const std::string& programDirectory);

/// The first of `places` that exists. Throws std::runtime_error when none does: it lists them and
/// gives `advice`.
std::string FirstExisting(const std::vector<std::string>& places, const std::string& advice);

/// The directory of the running program.
std::string ProgramDirectory();

}  // namespace pciinfo
