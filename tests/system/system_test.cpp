// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/system/booted_machine.h"
#include "tests/system/inventory.h"
#include "tests/system/witnesses.h"

namespace {

using nlohmann::json;

std::string Difference(const json& expected, const json& found) {
  return "found:\n" + found.dump(2) + "\nthe way from what is expected to what is found:\n" +
         json::diff(expected, found).dump(2);
}

// "01:00.0 1" for each function that is expected in the slot with the tag "Tag 1".
std::vector<std::string> ExpectedSlotNumbers(const json& slots) {
  std::vector<std::string> numbers;
  for (const json& slot : slots) {
    const std::string tag = slot.at("tag");
    const std::string number = tag.substr(tag.find(' '));
    for (const std::string function : slot.at("functions")) {
      numbers.push_back(function.substr(0, function.find(' ')) + number);
    }
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

class SystemTest : public testing::Test {
 protected:
  const SystemMachine& machine_ = booted.machine;
  const Answer& pciinfo_ = booted.answers.at("pciinfo");
  const Answer& lspci_ = booted.answers.at("lspci");
  const Answer& dmidecode_ = booted.answers.at("dmidecode");
};

// The other tests depend on this: the machine is as described.
TEST_F(SystemTest, FirmwareShowsTheSlotRecordsAsDescribed) {
  EXPECT_EQ(dmidecode_.status, 0) << dmidecode_.err;
  const json found = ReadDmidecode(dmidecode_.out);
  EXPECT_TRUE(found == machine_.records) << Difference(machine_.records, found);
  EXPECT_NE(dmidecode_.out.find("\nSMBIOS " + machine_.smbiosVersion + " present.\n"),
            std::string::npos)
      << dmidecode_.out;
}

TEST_F(SystemTest, ProgramCollectsEverythingWithoutAComplaint) {
  EXPECT_EQ(pciinfo_.status, 0);
  EXPECT_EQ(pciinfo_.err, "");
}

TEST_F(SystemTest, FunctionsAreThoseThatLspciLists) {
  EXPECT_EQ(lspci_.status, 0) << lspci_.err;
  EXPECT_EQ(ReadFunctions(json::parse(pciinfo_.out)), ReadLspci(lspci_.out));
}

TEST_F(SystemTest, CardsSitInTheirSlots) {
  const json& expected = machine_.expected.at("slots");
  const json found = ReadInventory(json::parse(pciinfo_.out)).at("slots");
  EXPECT_TRUE(found == expected) << Difference(expected, found);
}

TEST_F(SystemTest, OtherFunctionsAreOnTheBoard) {
  const json& expected = machine_.expected.at("onBoard");
  const json found = ReadInventory(json::parse(pciinfo_.out)).at("onBoard");
  EXPECT_TRUE(found == expected) << Difference(expected, found);
}

TEST_F(SystemTest, OnlyFunctionsInSlotsCarryASlotNumber) {
  EXPECT_EQ(ReadSlotNumbers(json::parse(pciinfo_.out)),
            ExpectedSlotNumbers(machine_.expected.at("slots")));
}

}  // namespace
