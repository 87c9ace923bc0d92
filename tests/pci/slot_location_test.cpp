// SPDX-License-Identifier: Apache-2.0
#include "pci/slot_location.h"

#include <gtest/gtest.h>

namespace {

using Locations = std::vector<SlotLocation>;

DMIWord Word(std::uint16_t value) {
  return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8)};
}

DMIPeerGroup Peer(std::uint16_t segmentGroup, std::uint8_t bus) {
  return {Word(segmentGroup), bus, 0xFF, 0};
}

// A slot in use, device 2, function 1.
DMIType9 Slot(std::uint8_t bus, std::uint8_t peerCount = 0) {
  DMIType9 slot{};
  slot.length = 0x18;
  slot.currentUsage = 4;
  slot.slotId = Word(0x1234);
  slot.segmentGroup = Word(0x0102);
  slot.bus = bus;
  slot.deviceFunction = 0x11;
  slot.peerGroupingCount = peerCount;
  for (std::uint8_t k = 0; k < kMaxPeerGroups; ++k) {
    slot.peerGroups[k] = Peer(k, static_cast<std::uint8_t>(0x40 + k));
  }
  return slot;
}

// Locations of one slot whose first tag is 7; `nextTag` receives the next tag.
template <class Append>
Locations Collect(Append append, int* nextTag = nullptr) {
  std::uint16_t tag = 7;
  Locations locations;
  append(&tag, &locations);
  if (nextTag != nullptr) *nextTag = tag;
  return locations;
}

Locations Of(const DMIType9& slot, int* nextTag = nullptr) {
  return Collect([&](auto... out) { AppendSlotLocations(slot, out...); }, nextTag);
}

Locations Of(const std::string& oemString, int* nextTag = nullptr) {
  return Collect([&](auto... out) { AppendSlotLocation(oemString, out...); }, nextTag);
}

// The location that a string with a bus number and `markers` describes.
SlotLocation Described(const std::string& markers) {
  const Locations locations = Of("$T9 B:0x3a " + markers);
  EXPECT_EQ(locations.size(), 1U) << markers;
  return locations.empty() ? SlotLocation() : locations[0];
}

}  // namespace

TEST(SlotLocations, SlotIsWhereItsStructureSays) {
  int nextTag = 0;
  const Locations locations = Of(Slot(0x3A), &nextTag);
  ASSERT_EQ(locations.size(), 1U);
  EXPECT_EQ(locations[0].tag, 7);
  EXPECT_EQ(locations[0].slotId, 0x1234);
  EXPECT_EQ(locations[0].segmentGroup, 0x0102);
  EXPECT_EQ(locations[0].bus, 0x3A);
  EXPECT_EQ(locations[0].device, 2);
  EXPECT_EQ(locations[0].function, 1);
  EXPECT_EQ(locations[0].currentUsage, 4);
  EXPECT_EQ(nextTag, 8);
}

TEST(SlotLocations, DeviceAndFunctionShareOneByte) {
  DMIType9 slot = Slot(1);
  slot.deviceFunction = 0xFE;
  EXPECT_EQ(Of(slot)[0].device, 31);
  EXPECT_EQ(Of(slot)[0].function, 6);
}

TEST(SlotLocations, SlotOnBusZeroIsNotRecordedButTakesATag) {
  int nextTag = 0;
  EXPECT_TRUE(Of(Slot(0), &nextTag).empty());
  EXPECT_EQ(nextTag, 8);
}

TEST(SlotLocations, PeerGroupSharesEverythingButSegmentAndBusWithItsSlot) {
  int nextTag = 0;
  const Locations locations = Of(Slot(0x3A, 1), &nextTag);
  ASSERT_EQ(locations.size(), 2U);
  EXPECT_EQ(locations[0].tag, 7);
  EXPECT_EQ(locations[0].bus, 0x3A);
  EXPECT_EQ(locations[1].tag, 8);
  EXPECT_EQ(locations[1].segmentGroup, 0);
  EXPECT_EQ(locations[1].bus, 0x40);
  EXPECT_EQ(locations[1].slotId, 0x1234);
  EXPECT_EQ(locations[1].device, 2) << "not the peer group's own device";
  EXPECT_EQ(locations[1].function, 1);
  EXPECT_EQ(locations[1].currentUsage, 4);
  EXPECT_EQ(nextTag, 9);
}

TEST(SlotLocations, EightPeerGroupsAreRead) {
  int nextTag = 0;
  const Locations locations = Of(Slot(0x3A, 8), &nextTag);
  ASSERT_EQ(locations.size(), 9U);
  for (unsigned k = 0; k < 8; ++k) {
    EXPECT_EQ(locations[k + 1].tag, 8 + k);
    EXPECT_EQ(locations[k + 1].segmentGroup, k);
    EXPECT_EQ(locations[k + 1].bus, 0x40 + k);
  }
  EXPECT_EQ(nextTag, 16);
}

TEST(SlotLocations, OtherPeerGroupCountsAreNotBelieved) {
  for (const int count : {0, 9, 67, 255}) {
    int nextTag = 0;
    EXPECT_EQ(Of(Slot(0x3A, static_cast<std::uint8_t>(count)), &nextTag).size(), 1U) << count;
    EXPECT_EQ(nextTag, 8) << count;
  }
}

TEST(SlotLocations, PeerGroupOnBusZeroIsNotRecordedButTakesATag) {
  DMIType9 slot = Slot(0x3A, 3);
  slot.peerGroups[1] = Peer(5, 0);
  int nextTag = 0;
  const Locations locations = Of(slot, &nextTag);
  ASSERT_EQ(locations.size(), 3U);
  EXPECT_EQ(locations[1].tag, 8);
  EXPECT_EQ(locations[2].tag, 10);
  EXPECT_EQ(locations[2].bus, 0x42);
  EXPECT_EQ(nextTag, 11);
}

TEST(SlotLocations, PeerGroupOfASlotOnBusZeroIsRecorded) {
  const Locations locations = Of(Slot(0, 1));
  ASSERT_EQ(locations.size(), 1U);
  EXPECT_EQ(locations[0].tag, 8);
  EXPECT_EQ(locations[0].bus, 0x40);
}

TEST(SlotLocations, StructureWithoutBusInformationHasNoPeerGroups) {
  DMIType9 slot = Slot(0x3A, 1);
  slot.length = 0x10;
  EXPECT_EQ(Of(slot).size(), 1U);
  slot.length = 0x11;
  EXPECT_EQ(Of(slot).size(), 2U);
}

TEST(SlotLocations, AreAppended) {
  std::uint16_t tag = 1;
  Locations locations(1);
  AppendSlotLocations(Slot(0x3A), &tag, &locations);
  AppendSlotLocation("$T9 B:0x05", &tag, &locations);
  ASSERT_EQ(locations.size(), 3U);
  EXPECT_EQ(locations[0].tag, 0);
  EXPECT_EQ(locations[1].tag, 1);
  EXPECT_EQ(locations[2].tag, 2);
}

TEST(OemString, DescribesASlotWhenItBeginsWithTheMark) {
  EXPECT_TRUE(DescribesSlot("$T9"));
  EXPECT_TRUE(DescribesSlot("$T9 SID:0x01"));
  EXPECT_FALSE(DescribesSlot(""));
  EXPECT_FALSE(DescribesSlot("$T"));
  EXPECT_FALSE(DescribesSlot("$T8 SID:0x01"));
  EXPECT_FALSE(DescribesSlot("$t9"));
  EXPECT_FALSE(DescribesSlot(" $T9"));
}

TEST(OemString, DeviceNumberIsFoundInsideTheSlotId) {
  int nextTag = 0;
  const Locations locations = Of("$T9 SID:0x0102 SegGrp:0x0000 B:0x3a D:0x00 F:0x00", &nextTag);
  ASSERT_EQ(locations.size(), 1U);
  EXPECT_EQ(locations[0].tag, 7);
  EXPECT_EQ(locations[0].slotId, 0x02);
  EXPECT_EQ(locations[0].segmentGroup, 0);
  EXPECT_EQ(locations[0].bus, 0x3A);
  EXPECT_EQ(locations[0].device, 0x01);
  EXPECT_EQ(locations[0].function, 0);
  EXPECT_EQ(locations[0].currentUsage, 0);
  EXPECT_EQ(nextTag, 8);
}

TEST(OemString, DeviceAndFunctionAreReadWhereNoSlotIdStandsBeforeThem) {
  const SlotLocation location = Described("D:0x1f F:0x07");
  EXPECT_EQ(location.device, 0x1F);
  EXPECT_EQ(location.function, 7);
  EXPECT_EQ(Described("D:0x1f SID:0x0203").device, 0x1F);
}

TEST(OemString, SlotIdAndSegmentGroupKeepTheirLowByte) {
  EXPECT_EQ(Described("SID:0x1234").slotId, 0x34);
  EXPECT_EQ(Described("SegGrp:0x5678").segmentGroup, 0x78);
  EXPECT_EQ(Described("SegGrp:0xff00").segmentGroup, 0);
}

TEST(OemString, MissingMarkersLeaveZero) {
  const SlotLocation location = Described("");
  EXPECT_EQ(location.slotId, 0);
  EXPECT_EQ(location.segmentGroup, 0);
  EXPECT_EQ(location.device, 0);
  EXPECT_EQ(location.function, 0);
}

TEST(OemString, NoMoreDigitsAreReadThanAFieldHas) {
  EXPECT_EQ(Of("$T9 B:0x3a9")[0].bus, 0x3A);
  EXPECT_EQ(Described("SID:0x00059").slotId, 5);
}

TEST(OemString, ShortNumbersEndAtTheFirstOtherCharacter) {
  EXPECT_EQ(Of("$T9 B:0x5 D:0x1")[0].bus, 5);
  EXPECT_EQ(Of("$T9 B:0x5")[0].bus, 5);
  EXPECT_EQ(Described("SID:0x1 F:").slotId, 1);
}

TEST(OemString, UpperCaseDigitsAreRead) { EXPECT_EQ(Of("$T9 B:0x3A")[0].bus, 0x3A); }

TEST(OemString, FirstMarkerOfAKindCounts) { EXPECT_EQ(Of("$T9 B:0x05 B:0x06")[0].bus, 5); }

TEST(OemString, SlotOnBusZeroIsNotRecordedButTakesATag) {
  for (const char* text :
       {"$T9 SID:0x0001 B:0x00", "$T9 SID:0x0001", "$T9", "$T9 B:0x", "$T9 B:0xzz", "$T9 B:0x 5"}) {
    int nextTag = 0;
    EXPECT_TRUE(Of(std::string(text), &nextTag).empty()) << text;
    EXPECT_EQ(nextTag, 8) << text;
  }
}

TEST(OemString, AnyOtherStringTakesNoTag) {
  for (const char* text : {"", "SID:0x0001 B:0x3a", "$T8 B:0x3a", " $T9 B:0x3a"}) {
    int nextTag = 0;
    EXPECT_TRUE(Of(std::string(text), &nextTag).empty()) << text;
    EXPECT_EQ(nextTag, 7) << text;
  }
}

TEST(FirstString, BeginsBehindTheFormattedArea) {
  const unsigned char structure[] = {11, 5, 0, 0, 2, '$', 'T', '9', 0, 'x', 0, 0};
  EXPECT_EQ(FirstString(structure), "$T9");
}

TEST(FirstString, IsEmptyWhereThereAreNoStrings) {
  const unsigned char structure[] = {11, 5, 0, 0, 0, 0, 0};
  EXPECT_EQ(FirstString(structure), "");
}
