// SPDX-License-Identifier: Apache-2.0
#include "tests/fakes/host_locale.h"
#include "tests/fakes/slot_record.h"
#include "tests/pci/oem_strings.h"
#include "tests/pci/pci_fixture.h"

namespace {

using Bytes = std::vector<unsigned char>;
using Collections = std::vector<SlotBusCollection>;

constexpr const char* kEntering = "3 Entering GetSlotIDRetrievalType";
constexpr const char* kNotSupported =
    "3 Exiting GetSlotIDRetrievalType, not support SlotID Retrieval Feature";
constexpr const char* kOemStringsTell =
    "3 Exiting GetSlotIDRetrievalType, current SMBIOS version is 2.5 and type 11 contains bus info";
constexpr const char* kSlotsTell =
    "3 Exiting GetSlotIDRetrievalType, current SMBIOS version >= 2.6 and type 9 contains bus info";
constexpr const char* kSlotsTellNothing =
    "3 Exiting GetSlotIDRetrievalType, current SMBIOS version >= 2.6 and type 9 contains no bus "
    "info";

constexpr const char* kEnteringCorrelate = "3 Entering correlateDeviceAndSlot";
constexpr const char* kExitingCorrelate = "3 Exiting correlateDeviceAndSlot";
constexpr const char* kNoMatch = "3 not match slot";
constexpr const char* kNothingMatched = "0 Exiting correlateDeviceAndSlot";

Bytes SlotOfLength(std::uint8_t length) {
  SlotRecord slot;
  slot.length = length;
  slot.bus = 3;
  return slot.Bytes();
}

}  // namespace

class SlotsTest : public PciTest {
 protected:
  int RetrievalType(const std::string& version, const std::vector<Bytes>& structures) {
    Fake().log.clear();
    Fake().smBios.version = version;
    Fake().smBios.structures = structures;
    const int type = Collector().GetSlotIDRetrievalType();
    EXPECT_EQ(Fake().smBios.openHandles, 0);
    return type;
  }

  unsigned Correlate(int bus, Collections collections) {
    Fake().log.clear();
    return Collector().correlateDeviceAndSlot(bus, &collections);
  }
};

TEST_F(SlotsTest, TablesThatCannotBeOpenedTellNothing) {
  Fake().smBios.loadStatus = 4;
  EXPECT_EQ(RetrievalType("3.2", {SlotOfLength(0x18)}), 0);
  EXPECT_EQ(Fake().log, (Lines{kEntering, "0 Unable to open SMBIOS library error: 4"}));
  EXPECT_STREQ(dbgBuff, "Unable to open SMBIOS library error: 4");
}

TEST_F(SlotsTest, FirstSlotOfLengthSeventeenTellsBuses) {
  EXPECT_EQ(RetrievalType("2.7", {SlotOfLength(0x11)}), 2);
  EXPECT_EQ(Fake().log, (Lines{kEntering, kSlotsTell}));
}

TEST_F(SlotsTest, ShorterFirstSlotTellsNoBuses) {
  for (const int length : {0x0D, 0x10}) {
    EXPECT_EQ(RetrievalType("2.7", {SlotOfLength(static_cast<std::uint8_t>(length))}), 0);
    EXPECT_EQ(Fake().log, (Lines{kEntering, kSlotsTellNothing}));
  }
}

TEST_F(SlotsTest, VersionsFromTwoSixOnReadSlotStructures) {
  for (const char* version : {"2.6", "2.7", "2.10", "2.50", "3.0", "3.5", "4.0", "10.1"}) {
    EXPECT_EQ(RetrievalType(version, {SlotOfLength(0x18)}), 2) << version;
    EXPECT_EQ(Fake().log, (Lines{kEntering, kSlotsTell}));
    EXPECT_EQ(RetrievalType(version, {OemStrings({"$T9 B:0x03"})}), 0) << version;
    EXPECT_EQ(Fake().log, Lines{kEntering}) << "there is no slot structure";
  }
}

TEST_F(SlotsTest, OnlyTheFirstSlotIsExamined) {
  EXPECT_EQ(RetrievalType("3.0", {SlotOfLength(0x0D), SlotOfLength(0x18)}), 0);
  EXPECT_EQ(RetrievalType("3.0", {SlotOfLength(0x18), SlotOfLength(0x0D)}), 2);
  EXPECT_EQ(RetrievalType("3.0", {OemStrings({"text"}), SlotOfLength(0x18)}), 2);
}

TEST_F(SlotsTest, FirstSlotThatCannotBeFetchedTellsNothing) {
  Fake().smBios.firstStatus = 5;
  EXPECT_EQ(RetrievalType("3.0", {SlotOfLength(0x18)}), 0);
  EXPECT_EQ(Fake().log, Lines{kEntering});
}

TEST_F(SlotsTest, VersionsBelowTwoFiveAreNotSupported) {
  for (const char* version : {"2.4", "2.0", "1.5", "1.9", "0.0", "", "unknown", ".", "2x7"}) {
    EXPECT_EQ(RetrievalType(version, {SlotOfLength(0x18), OemStrings({"$T9 B:0x03"})}), 0);
    EXPECT_EQ(Fake().log, (Lines{kEntering, kNotSupported})) << version;
  }
}

TEST_F(SlotsTest, VersionTwoFiveReadsOemStrings) {
  EXPECT_EQ(RetrievalType("2.5", {SlotOfLength(0x18), OemStrings({"$T9 B:0x03"})}), 1);
  EXPECT_EQ(Fake().log, (Lines{kEntering, kOemStringsTell}));
  EXPECT_EQ(RetrievalType("2.5.1", {OemStrings({"$T9"})}), 1);
}

TEST_F(SlotsTest, AnyOemStringsStructureMayBeTheOneThatTells) {
  EXPECT_EQ(RetrievalType("2.5", {OemStrings({"text"}), OemStrings({}), OemStrings({"$T9"})}), 1);
  EXPECT_EQ(Fake().log, (Lines{kEntering, kOemStringsTell}));
}

TEST_F(SlotsTest, OemStringsWithoutTheMarkTellNothingAndLogOnlyTheEntering) {
  EXPECT_EQ(RetrievalType("2.5", {OemStrings({"text"}), OemStrings({"$T8"}), OemStrings({})}), 0);
  EXPECT_EQ(Fake().log, Lines{kEntering});
}

TEST_F(SlotsTest, OnlyTheFirstStringOfOemStringsCounts) {
  EXPECT_EQ(RetrievalType("2.5", {OemStrings({"text", "$T9 B:0x03"})}), 0);
}

TEST_F(SlotsTest, MissingOemStringsTellNothing) {
  EXPECT_EQ(RetrievalType("2.5", {SlotOfLength(0x18)}), 0);
  EXPECT_EQ(Fake().log, Lines{kEntering});
  Fake().smBios.firstStatus = 3;
  EXPECT_EQ(RetrievalType("2.5", {OemStrings({"$T9"})}), 0);
  EXPECT_EQ(Fake().log, Lines{kEntering});
}

TEST_F(SlotsTest, VersionIsTwoDecimalNumbersAroundADot) {
  const std::vector<Bytes> slot{SlotOfLength(0x18)};
  for (const char* version : {"2.6", "2.6.1", " 2.6", "2. 6", "+2.+6", "2.06", "2.6a", "02.10"}) {
    EXPECT_EQ(RetrievalType(version, slot), 2) << version;
  }
  for (const char* version : {"2", "2 .6", "2,6", "2.0x6", "2.", "2.a", "x2.6", ".6", ""}) {
    EXPECT_EQ(RetrievalType(version, slot), 0) << version;
    EXPECT_EQ(Fake().log, (Lines{kEntering, kNotSupported})) << version;
  }
}

TEST_F(SlotsTest, VersionIsReadAlikeInEveryLocaleOfTheHost) {
  for (const char separator : {'.', ','}) {
    const GroupingLocale locale(separator);
    EXPECT_EQ(RetrievalType("2.7", {SlotOfLength(0x18)}), 2) << separator;
    EXPECT_EQ(RetrievalType("2.5", {SlotOfLength(0x18)}), 0) << separator;
    EXPECT_EQ(Fake().log, Lines{kEntering}) << separator;
  }
}

TEST_F(SlotsTest, RetrievalTypeIsOnlyAnsweredNotKept) {
  EXPECT_EQ(RetrievalType("3.0", {SlotOfLength(0x18)}), 2);
  EXPECT_EQ(processState.slotIDRetrievalType, 0U);
}

TEST_F(SlotsTest, NoSlotMatchesInAnEmptyTable) {
  EXPECT_EQ(Correlate(0, {}), 0xFFFFFFFFU);
  EXPECT_EQ(Fake().log, (Lines{kEnteringCorrelate, kNothingMatched}));
}

TEST_F(SlotsTest, EachEntryThatDoesNotMatchIsLogged) {
  const Collections collections{{1, 0, 3, 3, 3}, {2, 0, 4, 4, 4}, {3, 0, 5, 5, 5}};
  EXPECT_EQ(Correlate(4, collections), 2U);
  EXPECT_EQ(Fake().log, (Lines{kEnteringCorrelate, kNoMatch, kExitingCorrelate}));
  EXPECT_EQ(Correlate(6, collections), 0xFFFFFFFFU);
  EXPECT_EQ(Fake().log, (Lines{kEnteringCorrelate, kNoMatch, kNoMatch, kNoMatch, kNothingMatched}));
}

TEST_F(SlotsTest, FirstMatchingEntryWins) {
  EXPECT_EQ(Correlate(5, {{1, 0, 0, 4, 6}, {2, 0, 5, 5, 5}}), 1U);
  EXPECT_EQ(Fake().log, (Lines{kEnteringCorrelate, kExitingCorrelate}));
  EXPECT_EQ(Correlate(0, {{1, 0, 0, 4, 6}, {2, 0, 0, 0, 0}}), 1U) << "the bridge's primary bus";
}

TEST_F(SlotsTest, RangeEndsWithTheSubordinateBus) {
  const Collections collections{{300, 0, 1, 4, 6}};
  EXPECT_EQ(Correlate(3, collections), 0xFFFFFFFFU);
  EXPECT_EQ(Correlate(4, collections), 300U);
  EXPECT_EQ(Correlate(6, collections), 300U);
  EXPECT_EQ(Correlate(7, collections), 0xFFFFFFFFU);
}

TEST_F(SlotsTest, BusNumbersAreNotCutToAByte) {
  EXPECT_EQ(Correlate(256, {{1, 0, 0, 0, 0}}), 0xFFFFFFFFU);
  EXPECT_EQ(Correlate(-1, {{1, 0, 255, 255, 255}}), 0xFFFFFFFFU);
}

TEST_F(SlotsTest, SlotRoutinesLogWithoutAProviderToo) {
  TPciDevInfo collector(deviceClass);
  Fake().smBios.loadStatus = 1;
  std::vector<SlotLocation> locations;
  Collections collections;
  EXPECT_EQ(collector.GetSlotIDRetrievalType(), 0);
  EXPECT_EQ(collector.readPCISlotLocation(&locations), -1);
  collector.readPCIConfigForSlots(&locations, &collections);
  collector.correlateDeviceAndSlot(0, &collections);
  EXPECT_EQ(Fake().log,
            (Lines{kEntering, "0 Unable to open SMBIOS library error: 1",
                   "3 Entering readPCISlotLocation", "0 Unable to open SMBIOS library error: 1",
                   "3 Entering readPCIConfigForSlots", "3 Exiting readPCIConfigForSlots",
                   kEnteringCorrelate, kNothingMatched}));
}
