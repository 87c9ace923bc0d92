// SPDX-License-Identifier: Apache-2.0
#include "tests/machines/collection.h"

#include <set>

#include "tests/machines/machine.h"

namespace {

constexpr const char* kClasses[] = {
    "QZMSG_PCIDevice",    "QZMSG_PCIBridge",     "QZMSG_SystemSlot", "QZMSG_SystemBoard",
    "QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice", "QZMSG_PCIRawData",
};

class CollectionTest : public MachineTest {};
INSTANTIATE_TEST_SUITE_P(Machines, CollectionTest, testing::ValuesIn(AllMachines()), TestNameOf);

TEST_P(CollectionTest, AsksForAllSevenClassesAndHoldsNoOther) {
  const Collection collection = Collect(GetParam());
  EXPECT_TRUE(collection.status == 0 || collection.status == 1) << collection.status;
  std::size_t known = 0;
  for (const char* name : kClasses) {
    EXPECT_TRUE(collection.HasLogged("3 TPciInfoCallbacks::GetData - Received request for class " +
                                     std::string(name) + "."));
    known += collection.Of(name).size();
  }
  EXPECT_EQ(known, collection.instances.size());
  EXPECT_EQ(collection.Of("QZMSG_SystemBoard").size(), 1U);
}

TEST_P(CollectionTest, NamesEachInstanceOnce) {
  std::set<std::string> paths;
  for (const nlohmann::json& instance : Collect(GetParam()).instances) {
    EXPECT_TRUE(paths.insert(instance.at("path")).second) << instance.at("path");
  }
}

}  // namespace
