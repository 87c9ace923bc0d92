// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "tests/machines/collection.h"
#include "tests/machines/machine.h"
#include "tests/recipes/machine_recipe.h"

namespace {

using nlohmann::json;

constexpr const char* kMask = "*";

// Masks the system's name in an object path; paths inside paths are escaped, once per level.
std::string WithoutSystemName(std::string path) {
  for (std::size_t place = 0; (place = path.find("SystemName=", place)) != std::string::npos;) {
    place = path.find('"', place) + 1;
    path.replace(place, path.find_first_of("\\\"", place) - place, kMask);
  }
  return path;
}

bool IsFunction(const json& instance) {
  return instance.at("class") == "QZMSG_PCIDevice" || instance.at("class") == "QZMSG_PCIBridge";
}

// Masks what depends on the machine that runs the test: its name, and the texts of its lspci.
json Masked(json instance) {
  instance["path"] = WithoutSystemName(instance.at("path"));
  json& properties = instance["properties"];
  for (const char* reference : {"Antecedent", "Dependent"}) {
    if (!properties.contains(reference)) continue;
    properties[reference] = WithoutSystemName(properties.at(reference));
  }
  for (const char* name : {"SystemName", "RawResult"}) {
    if (properties.contains(name)) properties[name] = kMask;
  }
  if (IsFunction(instance)) properties["Description"] = kMask;
  return instance;
}

json Masked(const Collection& collection) {
  json instances = json::array();
  for (const json& instance : collection.instances) instances.push_back(Masked(instance));
  return {{"exitStatus", collection.status}, {"instances", instances}};
}

void Write(const json& collection, const std::filesystem::path& file) {
  std::ofstream stream(file);
  stream << "{\"exitStatus\":" << collection.at("exitStatus") << ",\n\"instances\":[";
  const char* separator = "\n";
  for (const json& instance : collection.at("instances")) {
    stream << separator << instance;
    separator = ",\n";
  }
  stream << "\n]}\n" << std::flush;
  ASSERT_TRUE(stream) << file;
}

class ExpectationTest : public MachineTest {};
INSTANTIATE_TEST_SUITE_P(Machines, ExpectationTest, testing::ValuesIn(OwnMachines()), TestNameOf);

TEST_P(ExpectationTest, HoldsWhatTheProgramCollects) {
  const std::filesystem::path file = GetParam().source / "expected.json";
  const Collection collection = Collect(GetParam());
  const json collected = Masked(collection);
  if (std::getenv("PCIINFO_REFRESH_MACHINES") != nullptr) {
    Write(collected, file);
    std::cout << "rewritten: " << file << "; read the difference\n";
  }
  const json expected = ReadRecipe(file);
  EXPECT_EQ(collected, expected) << json::diff(expected, collected).dump(1) << collection.messages;
}

}  // namespace
