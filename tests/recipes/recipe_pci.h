// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>

#include "tests/recipes/recipe_entry.h"

namespace recipe {

/// Writes proc/bus/pci and, unless the machine has none, sys/bus/pci/devices below `root`: the keys
/// "sysfs" and "pci" of the machine.
void BuildPci(Entry& machine, const std::filesystem::path& root);

}  // namespace recipe
