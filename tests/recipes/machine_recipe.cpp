// SPDX-License-Identifier: Apache-2.0
#include "tests/recipes/machine_recipe.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tests/recipes/recipe_pci.h"
#include "tests/recipes/recipe_smbios.h"

using nlohmann::json;

json ReadRecipe(const std::filesystem::path& file) {
  std::ifstream stream(file);
  if (!stream) throw std::runtime_error("cannot open " + file.string());
  try {
    return json::parse(stream);
  } catch (const json::exception& error) {
    throw std::runtime_error(file.string() + ": " + error.what());
  }
}

void BuildMachine(const json& recipe, const std::filesystem::path& root) {
  recipe::Entry entry(recipe, "machine");
  entry.Text("about");
  entry.Flag("endless", false);
  recipe::BuildPci(entry, root);
  if (entry.Has("smbios")) recipe::BuildSmbios({entry.Get("smbios"), "machine.smbios"}, root);
  entry.RefuseOthers();
}
