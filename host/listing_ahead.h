#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pciinfo {

// The plug-in describes functions by the words of `lspci`, which take most of the time of a run:
// the sooner it is started, the more is done beside it. The plug-in's own call takes it over.

/// Whether a command line (without the program's name) asks the program's own plug-in for functions
/// of this machine. This is a guess, made before the words are parsed: it says no to every command
/// line that asks for something else, also to some that do ask for it, and may say yes to wrong
/// ones.
bool AsksForFunctions(const std::vector<std::string_view>& words);

/// Starts the listing for such a command line. This process then has given up what collecting does
/// not need (see GiveUpPrivileges), as the listing has to. Not where a terminal is written to: a
/// pager may be started there, which keeps the user's rights.
void StartListingFor(const std::vector<std::string_view>& words);

/// Starts the listing when the program's own plug-in is going to be asked for these classes, unless
/// it was started already.
void StartListingFor(const std::vector<std::string>& classes);

}  // namespace pciinfo
