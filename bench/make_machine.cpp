// SPDX-License-Identifier: Apache-2.0

// bench_machine N DIRECTORY: writes the capture of a machine with N PCI functions. bench_machine
// RECIPE.json DIRECTORY: that of the machine of a recipe (machine_recipe.h).

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

#include "bench/machine_files.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: bench_machine FUNCTIONS|RECIPE.json DIRECTORY\n", stderr);
    return 2;
  }
  try {
    const std::filesystem::path recipe = argv[1];
    if (recipe.extension() == ".json") {
      bench::WriteRecipe(recipe, argv[2]);
    } else {
      bench::WriteMachine(std::stoul(argv[1]), argv[2]);
    }
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "bench_machine: no machine of %s in %s: %s\n", argv[1], argv[2],
                 failure.what());
    return 1;
  }
}
