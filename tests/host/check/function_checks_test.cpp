// SPDX-License-Identifier: Apache-2.0

// The checks of functions: whether they answer, errors, drivers and regions.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/machine_facts_maker.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SilentFunction, IsFound) {
  MachineFacts facts = MakeHealthyMachine();
  MachineFunction& network = facts.machine.functions[kNetwork];
  network.baseClass = network.subclass = network.revision = 0xFF;
  EXPECT_THAT(CodesOf(facts), IsEmpty()) << "a header that is not all ones";
  network.headerType = 0x7F;
  EXPECT_THAT(FoundBy("function-silent", facts), ElementsAre("01:00.0: in SLOT1"));
  facts.functions[kNetwork].powerState = "D3cold";
  EXPECT_THAT(CodesOf(facts), IsEmpty()) << "turned off";
}

/// The codes of a machine whose network card has so many errors.
std::vector<std::string> CodesWith(ErrorCount FunctionFacts::*count, std::uint64_t errors) {
  MachineFacts facts = MakeHealthyMachine();
  (facts.functions[kNetwork].*count).total = errors;
  return CodesOf(facts);
}

TEST(Errors, AreAsGraveAsTheirKind) {
  EXPECT_THAT(CodesWith(&FunctionFacts::fatal, 1), ElementsAre("errors-fatal"));
  EXPECT_THAT(CodesWith(&FunctionFacts::nonFatal, 1), ElementsAre("errors-nonfatal"));
  EXPECT_THAT(CodesWith(&FunctionFacts::corrected, 1), ElementsAre("errors-corrected"));
  EXPECT_THAT(CodesWith(&FunctionFacts::corrected, 999), ElementsAre("errors-corrected"));
  EXPECT_THAT(CodesWith(&FunctionFacts::corrected, 1000), ElementsAre("errors-corrected-many"));
  EXPECT_THAT(CodesWith(&FunctionFacts::corrected, UINT64_MAX),
              ElementsAre("errors-corrected-many"));
}

TEST(Errors, AreToldByKind) {
  MachineFacts facts = MakeHealthyMachine();
  facts.functions[kNetwork].corrected = {5, {"RxErr 3", "BadTLP 2"}};
  facts.functions[kNetworkPort].corrected = {7, {}};
  EXPECT_THAT(FoundBy("errors-corrected", facts),
              ElementsAre("00:01.0: 7", "01:00.0: RxErr 3, BadTLP 2, in SLOT1"));
}

/// What `driver-missing` finds when the network card has no driver and another class.
std::vector<std::string> FoundWithoutDriver(unsigned classCode,
                                            FunctionPlace place = FunctionPlace::kSlot) {
  MachineFacts facts = MakeHealthyMachine();
  MachineFunction& network = facts.machine.functions[kNetwork];
  network.driver.clear();
  network.baseClass = classCode >> 8U;
  network.subclass = classCode & 0xFFU;
  network.place = place;
  return FoundBy("driver-missing", facts);
}

TEST(MissingDriver, IsFoundWhereAModuleIsKnown) {
  EXPECT_THAT(FoundWithoutDriver(0x0200), ElementsAre("01:00.0: module igb, in SLOT1"));
  MachineFacts facts = MakeHealthyMachine();
  facts.machine.functions[kNetwork].driver.clear();
  facts.functions[kNetwork].modules.clear();
  EXPECT_THAT(CodesOf(facts), IsEmpty());
}

TEST(MissingDriver, IsToldOfServicesOnTheBoardToo) {
  for (const unsigned code : {0x0100U, 0x0104U, 0x0106U, 0x0108U, 0x0200U, 0x0207U, 0x0280U,
                              0x0302U, 0x0502U, 0x0C03U, 0x0C04U, 0x0C06U, 0x1200U}) {
    EXPECT_EQ(FoundWithoutDriver(code, FunctionPlace::kOnBoard).size(), 1U) << code;
  }
}

TEST(MissingDriver, IsToldOfOtherCardsInSlotsOnly) {
  for (const unsigned code : {0x0300U, 0x0400U, 0x0700U, 0x0B40U, 0x0C09U, 0x0D80U, 0x1080U}) {
    EXPECT_EQ(FoundWithoutDriver(code, FunctionPlace::kSlot).size(), 1U) << code;
    EXPECT_EQ(FoundWithoutDriver(code, FunctionPlace::kSharedPort).size(), 1U) << code;
    EXPECT_THAT(FoundWithoutDriver(code, FunctionPlace::kOnBoard), IsEmpty()) << code;
    EXPECT_THAT(FoundWithoutDriver(code, FunctionPlace::kUnknown), IsEmpty()) << code;
    EXPECT_THAT(FoundWithoutDriver(code, FunctionPlace::kUnnamedSlot), IsEmpty()) << code;
  }
}

TEST(MissingDriver, IsNormalForPartsOfTheBoardAndSound) {
  for (const unsigned code : {0x0101U, 0x0403U, 0x0500U, 0x0580U, 0x0600U, 0x0601U, 0x0604U,
                              0x0780U, 0x0880U, 0x0C05U, 0x0C80U, 0x1101U, 0x1180U, 0x1300U}) {
    EXPECT_THAT(FoundWithoutDriver(code), IsEmpty()) << code;
  }
}

TEST(MissingDriver, IsNormalForVirtualFunctions) {
  MachineFacts facts = MakeHealthyMachine();
  facts.machine.functions[kNetwork].driver.clear();
  facts.machine.functions[kNetwork].physicalFunction = DomainAddress{0, {1, 0, 1}};
  EXPECT_THAT(CodesOf(facts), IsEmpty());
}

TEST(MissingDriver, IsUnknownWhereNoDriverIsKnown) {
  MachineFacts facts = MakeHealthyMachine();
  for (MachineFunction& function : facts.machine.functions) function.driver.clear();
  EXPECT_THAT(CodesOf(facts), IsEmpty());
}

std::vector<std::string> FoundWithRegions(const std::vector<Region>& regions) {
  MachineFacts facts = MakeHealthyMachine();
  facts.functions[kNetwork].regions = regions;
  return FoundBy("region-unassigned", facts);
}

const Region kUnassigned{2, 0, 0x100000, "memory"};
const Region kAssigned{0, 0xFE000000, 0x1000, "memory"};
const Region kUnassignedIo{4, 0, 0x80, "I/O"};

TEST(UnassignedRegion, IsFound) {
  EXPECT_THAT(FoundWithRegions({kAssigned, kUnassigned}),
              ElementsAre("01:00.0: memory region 2 of 0x100000 bytes, in SLOT1"));
}

TEST(UnassignedRegion, MayBeIoWhereThereIsMemory) {
  EXPECT_THAT(FoundWithRegions({kAssigned, kUnassignedIo}), IsEmpty());
  EXPECT_EQ(FoundWithRegions({kUnassignedIo}).size(), 1U);
}

TEST(UnassignedRegion, MayBeARomOrAWindow) {
  EXPECT_THAT(FoundWithRegions({{6, 0, 0x1000, "expansion ROM"},
                                {7, 0, 0x1000, "I/O window"},
                                {8, 0, 0x100000, "memory window"}}),
              IsEmpty());
}

TEST(UnassignedRegion, IsNormalForBridgesChipSetAndVirtualFunctions) {
  MachineFacts facts = MakeHealthyMachine();
  facts.functions[kNetworkPort].regions = {kUnassigned};
  EXPECT_THAT(CodesOf(facts), IsEmpty());
  facts.functions[kNetwork].regions = {kUnassigned};
  facts.machine.functions[kNetwork].physicalFunction = DomainAddress{0, {1, 0, 1}};
  EXPECT_THAT(CodesOf(facts), IsEmpty());
  facts.machine.functions[kNetwork].physicalFunction.reset();
  facts.machine.functions[kNetwork].baseClass = 0x11;
  EXPECT_THAT(CodesOf(facts), IsEmpty());
}

}  // namespace
}  // namespace pciinfo
