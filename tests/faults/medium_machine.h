#pragma once

#include <string>

/// Makes this process run on the machine of machine.json, with a /proc/pci that tells the last
/// function and a qualified name in /etc/hosts, and records what the tools print there, the listing
/// without the last function.
/// Throws std::runtime_error when that cannot be done.
void BecomeMediumMachine();

/// Where commands get their output from.
enum class Tools { kLive, kRecorded };
void Use(Tools tools);
