#pragma once

#include <string>

// String constants of the plug-in. Each source unit that includes this header has its own copy,
// made when the library is loaded and destroyed when it is unloaded. They are made before all other
// static objects: the plug-in registers itself from one of those, and a registry may ask for data
// at once.

// Names by which frameworks configure plug-ins; every unit of a plug-in can count on them.
[[gnu::init_priority(200)]] const std::string kPlugin = "plugin";
[[gnu::init_priority(200)]] const std::string kCmpi = "cmpi";
[[gnu::init_priority(200)]] const std::string kNspId = "nspID";

[[gnu::init_priority(200)]] const std::string kLineEnd = "\n";
/// Hexadecimal dump of every function's whole configuration space.
[[gnu::init_priority(200)]] const std::string kListHexCommand = "lspci -xxxx";
/// Most verbose decoded listing.
[[gnu::init_priority(200)]] const std::string kListVerboseCommand = "lspci -vvv";
