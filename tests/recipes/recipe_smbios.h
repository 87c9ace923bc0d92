// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>

#include "tests/recipes/recipe_entry.h"

namespace recipe {

/// Writes sys/firmware/dmi/tables below `root` from the key "smbios" of a machine.
void BuildSmbios(Entry tables, const std::filesystem::path& root);

}  // namespace recipe
