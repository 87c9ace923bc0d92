// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// String constants of the plug-in. Each source file that includes this header has its own copies,
// which are created when the library is loaded and destroyed when it is unloaded. They are created
// before all other static objects, because one of those registers the plug-in, and a registry may
// ask for data at once.

// Names that frameworks use to configure plug-ins. Every source file of a plug-in may expect them.
[[gnu::init_priority(200)]] const std::string kPlugin = "plugin";
[[gnu::init_priority(200)]] const std::string kCmpi = "cmpi";
[[gnu::init_priority(200)]] const std::string kNspId = "nspID";

[[gnu::init_priority(200)]] const std::string kLineEnd = "\n";
/// Hexadecimal dump of every function's whole configuration space.
[[gnu::init_priority(200)]] const std::string kListHexCommand = "lspci -xxxx";
/// Most verbose decoded listing.
[[gnu::init_priority(200)]] const std::string kListVerboseCommand = "lspci -vvv";
