// SPDX-License-Identifier: Apache-2.0

// bench_machine N DIRECTORY: writes the capture of a machine with N PCI functions. bench_machine
// RECIPE.json DIRECTORY: that of the machine of a recipe (machine_recipe.h). bench_machine --board
// N DIRECTORY: that of a machine with slots of every kind (board_plan.h).

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

#include "bench/machine_files.h"

int main(int argc, char** argv) {
  const bool isBoard = argc == 4 && std::string(argv[1]) == "--board";
  if (argc != 3 && !isBoard) {
    std::fputs(
        "usage: bench_machine FUNCTIONS|RECIPE.json DIRECTORY\n"
        "       bench_machine --board FUNCTIONS DIRECTORY\n",
        stderr);
    return 2;
  }
  if (isBoard) ++argv;
  try {
    const std::filesystem::path recipe = argv[1];
    if (isBoard) {
      bench::WriteBoard(std::stoul(argv[1]), argv[2]);
    } else if (recipe.extension() == ".json") {
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
