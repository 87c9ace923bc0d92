#pragma once

#include <cstddef>
#include <filesystem>

namespace bench {

/// Writes the machine that PlanMachine makes as a capture (docs/captures.md) to `folder`, which is
/// made or must be empty. Beside it stands `truth.txt`, which readers of captures pass over: a line
/// "TAG FUNCTION" ("5 0000:3b:00.0") for each function that sits in a slot. Throws std::exception.
void WriteMachine(std::size_t functions, const std::filesystem::path& folder);

/// Writes the machine of a recipe (see machine_recipe.h) as a capture to `folder`, which is made or
/// must be empty. Throws std::exception.
void WriteRecipe(const std::filesystem::path& file, const std::filesystem::path& folder);

}  // namespace bench
