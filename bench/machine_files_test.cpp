// SPDX-License-Identifier: Apache-2.0
#include "bench/machine_files.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

#include "bench/machine_plan.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

class MachineFilesTest : public testing::TestWithParam<unsigned> {
 protected:
  MachineFilesTest() {
    std::string name = (fs::temp_directory_path() / "pciinfo-machine-XXXXXX").string();
    directory_ = mkdtemp(name.data());
  }
  ~MachineFilesTest() override { fs::remove_all(directory_); }

  // Slot numbers by functions ("3b:00.0"), according to the plan of the machine.
  std::map<std::string, unsigned> Truth() const {
    std::map<std::string, unsigned> slots;
    std::ifstream file(directory_ / "truth.txt");
    unsigned tag = 0;
    for (std::string function; file >> tag >> function;) slots[function.substr(5)] = tag;
    return slots;
  }

  // Slot numbers by functions, according to the program.
  std::map<std::string, unsigned> Told() const {
    const std::string command = std::string(BENCH_PCIINFO) + " --root '" + directory_.string() +
                                "' --live-commands instances QZMSG_PCIDevice QZMSG_PCIBridge "
                                "--format jsonl 2>/dev/null";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::map<std::string, unsigned> slots;
    char line[8192];
    while (fgets(line, sizeof line, pipe.get()) != nullptr) {
      const auto properties = nlohmann::json::parse(line).at("properties");
      unsigned bus = 0, device = 0, function = 0;
      const auto location = properties.at("Location").get<std::string>();
      std::sscanf(location.c_str(), "PCI Bus %u, device %u, function %u", &bus, &device, &function);
      char address[16];
      std::snprintf(address, sizeof address, "%02x:%02x.%x", bus, device, function);
      if (properties.contains("UINumber")) slots[address] = properties.at("UINumber");
    }
    return slots;
  }

  fs::path directory_;
};

TEST_P(MachineFilesTest, TheProgramFindsEveryFunctionInItsTrueSlot) {
  WriteMachine(GetParam(), directory_);
  const auto truth = Truth();
  EXPECT_FALSE(truth.empty());
  EXPECT_EQ(Told(), truth);
}

INSTANTIATE_TEST_SUITE_P(Sizes, MachineFilesTest, testing::Values(64, 512));

TEST(PlanMachine, HasExactlyTheFunctionsThatWereAskedFor) {
  for (const std::size_t functions : {64U, 65U, 100U, 511U, 1000U, 4096U, 16384U, 20000U}) {
    const nlohmann::json pci = PlanMachine(functions).recipe.at("pci");
    std::set<std::string> addresses;
    for (const auto& function : pci) addresses.insert(function.at("address"));
    EXPECT_EQ(pci.size(), functions);
    EXPECT_EQ(addresses.size(), functions) << "an address stands twice";
  }
}

TEST(PlanMachine, HasConfigurationsOfAllSizesAndForeignDomains) {
  std::set<unsigned> sizes;
  std::set<std::size_t> addressLengths;
  const nlohmann::json pci = PlanMachine(512).recipe.at("pci");
  for (const auto& function : pci) {
    sizes.insert(function.at("configSize").get<unsigned>());
    addressLengths.insert(function.at("address").get<std::string>().size());
  }
  EXPECT_EQ(sizes, (std::set<unsigned>{64, 256, 4096}));
  EXPECT_EQ(addressLengths.size(), 3U);  // in domain 0, 0001 and 10000
}

TEST(PlanMachine, RefusesWhatItCannotMake) {
  EXPECT_THROW(PlanMachine(63), std::invalid_argument);
  EXPECT_THROW(PlanMachine(20001), std::invalid_argument);
}

}  // namespace
}  // namespace bench
