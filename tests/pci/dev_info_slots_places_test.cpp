// SPDX-License-Identifier: Apache-2.0
#include "tests/fakes/slot_record.h"
#include "tests/pci/oem_strings.h"
#include "tests/pci/pci_fixture.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr const char* kEntering = "3 Entering readPCISlotLocation";
constexpr const char* kExiting = "3 Exiting readPCISlotLocation";

SlotRecord SlotOnBus(std::uint8_t bus) {
  SlotRecord slot;
  slot.bus = bus;
  return slot;
}

}  // namespace

class SlotPlacesTest : public PciTest {
 protected:
  int ReadLocations(unsigned retrievalType, const std::vector<Bytes>& structures) {
    processState.slotIDRetrievalType = retrievalType;
    Fake().smBios.structures = structures;
    const int status = Collector().readPCISlotLocation(&locations);
    EXPECT_EQ(Fake().smBios.openHandles, 0);
    return status;
  }
  int ReadLocations(const std::vector<SlotRecord>& slots) {
    std::vector<Bytes> structures;
    for (const SlotRecord& slot : slots) structures.push_back(slot.Bytes());
    return ReadLocations(2, structures);
  }

  std::vector<SlotLocation> locations;
};

TEST_F(SlotPlacesTest, SlotWithPeerGroupIsTwoPlacesWithConsecutiveTags) {
  SlotRecord slot = SlotOnBus(0x3A);
  slot.slotId = 0x0102;
  slot.deviceFunction = 0x11;
  slot.peerCount = 1;
  slot.peers = {{5, 0x40, 0xFF}};
  EXPECT_EQ(ReadLocations({slot}), 0);
  ASSERT_EQ(locations.size(), 2U);
  EXPECT_EQ(locations[0].tag, 1);
  EXPECT_EQ(locations[0].slotId, 0x0102);
  EXPECT_EQ(locations[0].segmentGroup, 0);
  EXPECT_EQ(locations[0].bus, 0x3A);
  EXPECT_EQ(locations[0].device, 2);
  EXPECT_EQ(locations[0].function, 1);
  EXPECT_EQ(locations[0].currentUsage, 4);
  EXPECT_EQ(locations[1].tag, 2);
  EXPECT_EQ(locations[1].segmentGroup, 5);
  EXPECT_EQ(locations[1].bus, 0x40);
  EXPECT_EQ(locations[1].device, 2);
  EXPECT_EQ(locations[1].function, 1);
  EXPECT_EQ(tagCounter, 3);
  EXPECT_EQ(Fake().log, (Lines{kEntering, kExiting}));
}

TEST_F(SlotPlacesTest, SlotsOnBusZeroTakeTheirTags) {
  EXPECT_EQ(ReadLocations({SlotOnBus(0), SlotOnBus(3), SlotOnBus(0), SlotOnBus(4)}), 0);
  ASSERT_EQ(locations.size(), 2U);
  EXPECT_EQ(locations[0].tag, 2);
  EXPECT_EQ(locations[1].tag, 4);
  EXPECT_EQ(tagCounter, 5);
}

TEST_F(SlotPlacesTest, EightPeerGroupsAreReadAndNineAreNot) {
  SlotRecord slot = SlotOnBus(3);
  slot.peers.resize(9, {0, 9, 0});
  slot.length = 0x13 + 45;
  slot.peerCount = 8;
  SlotRecord other = slot;
  other.peerCount = 9;
  EXPECT_EQ(ReadLocations({slot, other}), 0);
  EXPECT_EQ(locations.size(), 10U);
  EXPECT_EQ(tagCounter, 11);
}

TEST_F(SlotPlacesTest, StructureThatEndsBeforeItsPeerGroupCountHasNone) {
  SlotRecord slot = SlotOnBus(3);
  slot.peerCount = 1;
  slot.peers = {{0, 9, 0}};
  slot.strings = {};
  for (const int length : {0x11, 0x12}) {
    slot.length = static_cast<std::uint8_t>(length);
    locations.clear();
    EXPECT_EQ(ReadLocations({slot}), 0);
    EXPECT_EQ(locations.size(), 1U) << length;
    EXPECT_EQ(tagCounter, 2) << length;
  }
}

TEST_F(SlotPlacesTest, PeerGroupsBehindTheStructureAreOnBusZero) {
  SlotRecord slot = SlotOnBus(3);
  slot.peerCount = 8;
  slot.length = 0x13;
  slot.strings = {};
  EXPECT_EQ(ReadLocations({slot}), 0);
  EXPECT_EQ(locations.size(), 1U);
  EXPECT_EQ(tagCounter, 10);
}

TEST_F(SlotPlacesTest, PeerGroupsAreReadAtTheirOffsetsInsideTheStringsToo) {
  SlotRecord slot = SlotOnBus(3);
  slot.length = 0x11;
  slot.strings = {"A\x01xxB"};
  EXPECT_EQ(ReadLocations({slot}), 0);
  ASSERT_EQ(locations.size(), 2U);
  EXPECT_EQ(locations[1].tag, 2);
  EXPECT_EQ(locations[1].bus, 'B');
}

TEST_F(SlotPlacesTest, ShortStructureShowsNothingOfTheOneBeforeIt) {
  SlotRecord longer = SlotOnBus(3);
  longer.segmentGroup = 7;
  longer.deviceFunction = 0xFF;
  longer.peerCount = 1;
  longer.peers = {{0, 9, 0}};
  SlotRecord shorter = SlotOnBus(4);
  shorter.length = 0x11;
  shorter.strings = {};
  SlotRecord shortest;
  shortest.length = 0x0D;
  shortest.strings = {};
  EXPECT_EQ(ReadLocations({longer, shorter, shortest}), 0);
  ASSERT_EQ(locations.size(), 3U);
  EXPECT_EQ(locations[2].tag, 3);
  EXPECT_EQ(locations[2].bus, 4);
  EXPECT_EQ(locations[2].segmentGroup, 0);
  EXPECT_EQ(locations[2].device, 0);
  EXPECT_EQ(tagCounter, 5) << "the shortest one is on bus 0";
}

TEST_F(SlotPlacesTest, OtherStructuresBetweenTheSlotsTakeNoTag) {
  EXPECT_EQ(ReadLocations(2, {OemStrings({"$T9 B:0x05"}), SlotOnBus(3).Bytes(), OemStrings({}),
                              SlotOnBus(4).Bytes()}),
            0);
  ASSERT_EQ(locations.size(), 2U);
  EXPECT_EQ(locations[1].tag, 2);
}

TEST_F(SlotPlacesTest, StructureThatCannotBeFetchedEndsTheSlots) {
  Bytes tooLarge = SlotOnBus(4).Bytes();
  tooLarge.insert(tooLarge.end() - 2, 1024, 'x');
  EXPECT_EQ(ReadLocations(2, {SlotOnBus(3).Bytes(), tooLarge, SlotOnBus(5).Bytes()}), 0);
  EXPECT_EQ(locations.size(), 1U);
  EXPECT_EQ(Fake().log, (Lines{kEntering, kExiting}));
}

TEST_F(SlotPlacesTest, OemStringsDescribeSlotsUnlessTheStructuresDo) {
  const std::vector<Bytes> structures{
      SlotOnBus(9).Bytes(), OemStrings({"text", "$T9 B:0x07"}),
      OemStrings({"$T9 SID:0x0102 SegGrp:0x0000 B:0x3a D:0x00 F:0x00"}), OemStrings({"$T9 B:0x00"}),
      OemStrings({"$T9 SegGrp:0x0003 B:0x05 D:0x1f F:0x02"})};
  for (const unsigned type : {1U, 0U}) {
    locations.clear();
    Fake().log.clear();
    EXPECT_EQ(ReadLocations(type, structures), 0);
    ASSERT_EQ(locations.size(), 2U);
    EXPECT_EQ(locations[0].tag, 1) << "a string without the mark takes no tag";
    EXPECT_EQ(locations[0].slotId, 2);
    EXPECT_EQ(locations[0].bus, 0x3A);
    EXPECT_EQ(locations[0].device, 1);
    EXPECT_EQ(locations[0].currentUsage, 0);
    EXPECT_EQ(locations[1].tag, 3) << "a slot on bus 0 takes one";
    EXPECT_EQ(locations[1].slotId, 0);
    EXPECT_EQ(locations[1].segmentGroup, 3);
    EXPECT_EQ(locations[1].bus, 5);
    EXPECT_EQ(locations[1].device, 0x1F);
    EXPECT_EQ(locations[1].function, 2);
    EXPECT_EQ(tagCounter, 4);
    EXPECT_EQ(Fake().log, (Lines{kEntering, kExiting}));
  }
}

TEST_F(SlotPlacesTest, PlacesAreAppendedAndTagsBeginAgain) {
  EXPECT_EQ(ReadLocations({SlotOnBus(3)}), 0);
  EXPECT_EQ(ReadLocations({SlotOnBus(4)}), 0);
  ASSERT_EQ(locations.size(), 2U);
  EXPECT_EQ(locations[0].bus, 3);
  EXPECT_EQ(locations[1].tag, 1);
}

TEST_F(SlotPlacesTest, TablesThatCannotBeOpenedGiveNoPlaces) {
  Fake().smBios.loadStatus = 2;
  tagCounter = 77;
  EXPECT_EQ(ReadLocations({SlotOnBus(3)}), -1);
  EXPECT_TRUE(locations.empty());
  EXPECT_EQ(tagCounter, 77);
  EXPECT_EQ(Fake().log, (Lines{kEntering, "0 Unable to open SMBIOS library error: 2"}));
}

TEST_F(SlotPlacesTest, FirstStructureThatCannotBeFetchedGivesNoPlaces) {
  Fake().smBios.firstStatus = 5;
  tagCounter = 77;
  EXPECT_EQ(ReadLocations({SlotOnBus(3)}), -1);
  EXPECT_TRUE(locations.empty());
  EXPECT_EQ(tagCounter, 77);
  EXPECT_EQ(Fake().log, (Lines{kEntering, "0 Return from smBiosGetFirst: 5"}));
  EXPECT_STREQ(dbgBuff, "Return from smBiosGetFirst: 5");
}

TEST_F(SlotPlacesTest, MachineWithoutStructuresOfTheTypeGivesNoPlaces) {
  EXPECT_EQ(ReadLocations(2, {OemStrings({"$T9 B:0x05"})}), -1);
  EXPECT_EQ(ReadLocations(1, {SlotOnBus(3).Bytes()}), -1);
  EXPECT_EQ(Fake().log, (Lines{kEntering, "0 Return from smBiosGetFirst: 2", kEntering,
                               "0 Return from smBiosGetFirst: 2"}));
}

TEST_F(SlotPlacesTest, FailingCloseIsLoggedAndThePlacesAreKept) {
  Fake().smBios.closeStatus = 3;
  EXPECT_EQ(ReadLocations({SlotOnBus(3)}), 0);
  EXPECT_EQ(locations.size(), 1U);
  EXPECT_EQ(Fake().log, (Lines{kEntering, "0 Return from smBiosClose: 3", kExiting}));
}

TEST_F(SlotPlacesTest, FailingCloseAfterAFailedFetchIsNotLogged) {
  Fake().smBios.closeStatus = 3;
  Fake().smBios.firstStatus = 5;
  EXPECT_EQ(ReadLocations({SlotOnBus(3)}), -1);
  EXPECT_EQ(Fake().log, (Lines{kEntering, "0 Return from smBiosGetFirst: 5"}));
}
