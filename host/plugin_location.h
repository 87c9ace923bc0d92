#pragma once

#include <string>
#include <vector>

namespace pciinfo {

/// Where the plug-in that belongs to a program in `programFolder` may be, best place first: beside
/// the program, in the lib folder beside the program's, where it is installed with the program.
std::vector<std::string> PluginPlaces(const std::string& programFolder);

/// The first of `places` that exists. Throws std::runtime_error, which lists them, when none does.
std::string FirstExisting(const std::vector<std::string>& places);

/// The folder of the running program.
std::string ProgramFolder();

}  // namespace pciinfo
