#pragma once

#include <string>

// String constants of the plug-in. Each source unit that includes this header has its own copy,
// made when the library is loaded and gone when it is unloaded, so that no unit depends on the
// order in which another one is initialised.

// Names by which frameworks configure plug-ins; every unit of a plug-in can count on them.
const std::string kPlugin = "plugin";
const std::string kCmpi = "cmpi";
const std::string kNspId = "nspID";

const std::string kLineEnd = "\n";
/// Hexadecimal dump of every function's whole configuration space.
const std::string kListHexCommand = "lspci -xxxx";
/// Most verbose decoded listing.
const std::string kListVerboseCommand = "lspci -vvv";
