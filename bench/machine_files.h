// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <filesystem>

namespace bench {

/// Writes the machine of PlanMachine as a capture (docs/captures.md) to `directory`, which is
/// created or must be empty. Adds `truth.txt`, which readers of captures ignore: a line "TAG
/// FUNCTION" ("5 0000:3b:00.0") for each function in a slot. Throws std::exception.
void WriteMachine(std::size_t functions, const std::filesystem::path& directory);

/// Writes the machine of PlanBoard as a capture in the same way. Adds `truth.json`, the truth of
/// the plan. Throws std::exception.
void WriteBoard(std::size_t functions, const std::filesystem::path& directory);

/// Writes the machine of a recipe (see machine_recipe.h) as a capture to `directory`, which is
/// created or must be empty. Throws std::exception.
void WriteRecipe(const std::filesystem::path& file, const std::filesystem::path& directory);

}  // namespace bench
