// SPDX-License-Identifier: Apache-2.0
#include "bench/machine_files.h"

#include <fmt/format.h>

#include <stdexcept>

#include "bench/board_plan.h"
#include "bench/machine_plan.h"
#include "tests/recipes/machine_recipe.h"
#include "tests/recipes/recipe_files.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

// Writes the kernel's files of the slots.
void WriteKernelSlots(const MachinePlan& plan, const fs::path& directory) {
  for (std::size_t i = 0; i < plan.slots.size(); ++i) {
    const PlannedSlot& slot = plan.slots[i];
    if (slot.bus == 0) continue;
    const fs::path place = directory / "sys/bus/pci/slots" / std::to_string(i + 1);
    recipe::WriteFile(place / "address", fmt::format("0000:{:02x}:00\n", slot.bus));
  }
}

void MakeEmpty(const fs::path& directory) {
  fs::create_directories(directory);
  if (!fs::is_empty(directory)) throw std::runtime_error("the directory is not empty");
}

void WriteManifest(const fs::path& directory) {
  recipe::WriteFile(directory / "manifest.json",
                    "{\"formatVersion\": 1, \"systemName\": \"server.example.org\"}\n");
}

std::string TruthOf(const MachinePlan& plan) {
  std::string truth;
  for (std::size_t i = 0; i < plan.slots.size(); ++i) {
    for (const std::string& function : plan.slots[i].functions) {
      truth += fmt::format("{} {}\n", i + 1, function);
    }
  }
  return truth;
}

}  // namespace

void WriteMachine(std::size_t functions, const fs::path& directory) {
  MakeEmpty(directory);
  const MachinePlan plan = PlanMachine(functions);
  BuildMachine(plan.recipe, directory);
  WriteKernelSlots(plan, directory);
  WriteManifest(directory);
  recipe::WriteFile(directory / "truth.txt", TruthOf(plan));
}

void WriteBoard(std::size_t functions, const fs::path& directory) {
  MakeEmpty(directory);
  const BoardPlan plan = PlanBoard(functions);
  BuildMachine(plan.recipe, directory);
  const fs::path pci = directory / "sys/bus/pci";
  for (const auto& [name, device] : plan.kernelSlots) {
    recipe::WriteFile(pci / "slots" / name / "address", device + "\n");
  }
  for (const auto& [function, number] : plan.userNumbers) {
    recipe::WriteFile(pci / "devices" / function / "firmware_node/sun",
                      fmt::format("{}\n", number));
  }
  WriteManifest(directory);
  recipe::WriteFile(directory / "truth.json", plan.truth.dump(1) + "\n");
}

void WriteRecipe(const fs::path& file, const fs::path& directory) {
  MakeEmpty(directory);
  BuildMachine(ReadRecipe(file), directory);
  WriteManifest(directory);
}

}  // namespace bench
