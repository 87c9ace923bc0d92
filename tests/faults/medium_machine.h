// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

/// Moves this process to the machine of machine.json, with a /proc/pci that describes the last
/// function and a qualified name in /etc/hosts. Records the output of the tools there, without the
/// last function in the listing. Throws std::runtime_error on failure.
void BecomeMediumMachine();

/// The directory with the recorded outputs of commands.
enum class Tools { kLive, kRecorded };
void Use(Tools tools);
