// SPDX-License-Identifier: Apache-2.0
#include <map>
#include <set>

#include "tests/machines/collection.h"
#include "tests/machines/machine.h"

namespace {

using nlohmann::json;

std::set<std::string> PathsOf(const std::vector<json>& instances) {
  std::set<std::string> paths;
  for (const json& instance : instances) paths.insert(instance.at("path"));
  return paths;
}

// Returns how often each path is at one end of the associations.
std::map<std::string, int> CountEnds(const std::vector<json>& associations, const char* end) {
  std::map<std::string, int> counts;
  for (const json& association : associations) {
    ++counts[association.at("properties").at(end).get<std::string>()];
  }
  return counts;
}

void ExpectEndsAmong(const std::vector<json>& associations, const char* end,
                     const std::vector<json>& instances) {
  const std::set<std::string> paths = PathsOf(instances);
  for (const auto& [path, count] : CountEnds(associations, end)) {
    EXPECT_TRUE(paths.contains(path)) << path;
  }
}

// On one platform, all ports of this chip share the slot of the first port that has a number, even
// those on the board.
bool MayShareSlot(const json& function) {
  return function.at("class") == "QZMSG_PCIDevice" && NumberOr(function, "VendorID", 0) == 0x14E4 &&
         NumberOr(function, "PciDeviceID", 0) == 0x1656;
}

class AssociationsTest : public MachineTest {
 protected:
  void SetUp() override {
    MachineTest::SetUp();
    collection_ = Collect(GetParam());
    functions_ = collection_.Functions();
    inSlot_ = collection_.Of("QZMSG_DeviceInSlot");
    onBoard_ = collection_.Of("QZMSG_OnBoardDevice");
  }

  Collection collection_;
  std::vector<json> functions_;
  std::vector<json> inSlot_;
  std::vector<json> onBoard_;
};
INSTANTIATE_TEST_SUITE_P(Machines, AssociationsTest, testing::ValuesIn(AllMachines()), TestNameOf);

TEST_P(AssociationsTest, NameInstancesThatAreThere) {
  ExpectEndsAmong(inSlot_, "Antecedent", collection_.Of("QZMSG_SystemSlot"));
  ExpectEndsAmong(inSlot_, "Dependent", functions_);
  ExpectEndsAmong(onBoard_, "Antecedent", collection_.Of("QZMSG_SystemBoard"));
  ExpectEndsAmong(onBoard_, "Dependent", functions_);
}

TEST_P(AssociationsTest, PutEachFunctionOnTheBoardUnlessItHasASlotNumber) {
  std::map<std::string, int> counts = CountEnds(onBoard_, "Dependent");
  for (const json& function : functions_) {
    const std::string path = function.at("path");
    EXPECT_EQ(counts[path], NumberOr(function, "UINumber", 0) == 0 ? 1 : 0) << path;
  }
}

TEST_P(AssociationsTest, PutEachFunctionWithASlotNumberIntoOneSlot) {
  std::map<std::string, int> counts = CountEnds(inSlot_, "Dependent");
  for (const json& function : functions_) {
    const std::string path = function.at("path");
    const bool numbered = NumberOr(function, "UINumber", 0) != 0;
    if (!numbered && MayShareSlot(function)) {
      EXPECT_LE(counts[path], 1) << path;
    } else {
      EXPECT_EQ(counts[path], numbered ? 1 : 0) << path;
    }
  }
}

}  // namespace
