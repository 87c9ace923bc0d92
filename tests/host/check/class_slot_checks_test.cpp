// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/class_facts_maker.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TVTQStatusCode;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned kAvailable = 3;

/// Facts without findings, with the only slot record modified by `change`.
template <class Change>
ClassFacts WithRecord(const Change& change) {
  ClassFacts facts = MakeSoundFacts();
  change(facts.slotRecords.records.front());
  return facts;
}

ClassFacts At(unsigned segment, const PciAddress& address, unsigned usage = 4) {
  return WithRecord([&](SlotRecord& record) {
    record.segment = segment;
    record.address = address;
    record.usage = usage;
  });
}

TEST(CheckSlots, SlotTablesMissing) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("slot-tables-missing", facts), IsEmpty());
  facts.slotRecords = {TVTQStatusCode::kNotFound, false, {}};
  EXPECT_THAT(Details("slot-tables-missing", facts),
              ElementsAre("/sys/firmware/dmi/tables: not on this machine"));
  EXPECT_THAT(Doubtful("slot-tables-unreadable", facts), IsEmpty());
  EXPECT_THAT(Doubtful("slot-records-missing", facts), IsEmpty());
}

TEST(CheckSlots, SlotTablesUnreadable) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("slot-tables-unreadable", facts), IsEmpty());
  facts.slotRecords = {TVTQStatusCode::kAccessDenied, false, {}};
  EXPECT_THAT(Details("slot-tables-unreadable", facts),
              ElementsAre("/sys/firmware/dmi/tables: this user may not read them"));
  facts.slotRecords.opened = TVTQStatusCode::kCorruptData;
  EXPECT_THAT(Details("slot-tables-unreadable", facts),
              ElementsAre("/sys/firmware/dmi/tables: they are damaged"));
  EXPECT_THAT(Doubtful("slot-tables-missing", facts), IsEmpty());
}

TEST(CheckSlots, SlotRecordsMissing) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("slot-records-missing", facts), IsEmpty());
  facts.slotRecords.records.clear();
  EXPECT_THAT(Doubtful("slot-records-missing", facts), ElementsAre("/sys/firmware/dmi/tables"));
}

TEST(CheckSlots, SlotAddressesMissing) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("slot-addresses-missing", facts), IsEmpty());
  facts.slotRecords.haveAddresses = false;
  EXPECT_THAT(Doubtful("slot-addresses-missing", facts), ElementsAre("/sys/firmware/dmi/tables"));
  facts.slotRecords.records.clear();
  EXPECT_THAT(Doubtful("slot-addresses-missing", facts), IsEmpty());
}

TEST(CheckSlots, SlotUnpublished) {
  ClassFacts facts = WithRecord([](SlotRecord& record) {
    record.length = 29;
    record.peerCount = 2;
  });
  EXPECT_THAT(Details("slot-unpublished", facts), ElementsAre("slots: 1 of 3 are published"));
  facts.slots.slots.push_back(PublishedSlot(2));
  facts.slots.slots.push_back(PublishedSlot(3));
  EXPECT_THAT(Doubtful("slot-unpublished", facts), IsEmpty());
}

TEST(CheckSlots, SlotOutOfPlace) {
  ClassFacts facts = MakeSoundFacts();
  facts.slots.slots.push_back(PublishedSlot(2));
  EXPECT_THAT(Doubtful("slot-out-of-place", facts), IsEmpty());
  facts.slots.slots.push_back(PublishedSlot(4));
  EXPECT_THAT(Details("slot-out-of-place", facts), ElementsAre("Tag 4: at position 3"));
}

TEST(CheckSlots, SlotNumberDrift) {
  const auto withLength = [](unsigned length, unsigned peers) {
    return WithRecord([&](SlotRecord& record) {
      record.length = length;
      record.peerCount = peers;
    });
  };
  EXPECT_THAT(Details("slot-number-drift", withLength(128, 3)),
              ElementsAre("Tag 1: record of 128 bytes with 3 peer groups"));
  EXPECT_THAT(Doubtful("slot-number-drift", withLength(127, 3)), IsEmpty());
  EXPECT_THAT(Doubtful("slot-number-drift", withLength(128, 0)), IsEmpty());
  EXPECT_THAT(Doubtful("slot-number-drift", withLength(128, 132)), IsEmpty());
}

TEST(CheckSlots, SlotRecordShort) {
  ClassFacts facts = MakeSoundFacts();
  facts.slotRecords.records.push_back(facts.slotRecords.records.front());
  EXPECT_THAT(Doubtful("slot-record-short", facts), IsEmpty());
  facts.slotRecords.records.back().length = 16;
  EXPECT_THAT(Details("slot-record-short", facts), ElementsAre("Tag 2: record of 16 bytes"));
  facts.slotRecords.haveAddresses = false;
  EXPECT_THAT(Doubtful("slot-record-short", facts), IsEmpty());
}

TEST(CheckSlots, SlotAddressMissing) {
  for (const ClassFacts& facts : {At(0, {0, 0, 0}), At(0, {0xFF, 0x1F, 7}), At(0, {0xFF, 0, 0}),
                                  At(0xFFFF, {3, 0, 0}), At(0xFF, {3, 0, 0})}) {
    EXPECT_THAT(Doubtful("slot-address-missing", facts), ElementsAre("Tag 1"));
    EXPECT_THAT(Doubtful("slot-address-placeholder", facts), IsEmpty());
    EXPECT_THAT(Doubtful("slot-address-dangling", facts), IsEmpty());
    EXPECT_THAT(Doubtful("slot-on-bus-zero", facts), IsEmpty());
  }
  EXPECT_THAT(Doubtful("slot-address-missing", At(0, {3, 0, 0})), IsEmpty());
  ClassFacts real = At(0, {0xFF, 0x1F, 7});
  real.functions[{0, {0xFF, 0x1F, 7}}] = {};
  EXPECT_THAT(Doubtful("slot-address-missing", real), IsEmpty());
}

TEST(CheckSlots, SlotAddressPlaceholder) {
  EXPECT_THAT(Details("slot-address-placeholder", At(0, {0xFF, 0x1F, 7}, kAvailable)),
              ElementsAre("Tag 1: 0000:ff:1f.7"));
  EXPECT_THAT(Doubtful("slot-address-missing", At(0, {0, 0, 0}, kAvailable)), IsEmpty());
  EXPECT_THAT(Doubtful("slot-address-placeholder", At(0, {9, 0, 0}, kAvailable)), IsEmpty());
  ClassFacts old = At(0, {0, 0, 0}, kAvailable);
  old.slotRecords.records.front().length = 13;
  EXPECT_THAT(Doubtful("slot-address-placeholder", old), IsEmpty());
}

TEST(CheckSlots, SlotAddressDangling) {
  EXPECT_THAT(Details("slot-address-dangling", At(0, {9, 0, 0})),
              ElementsAre("Tag 1: 0000:09:00.0"));
  EXPECT_THAT(Details("slot-address-dangling", At(1, {3, 0, 0})),
              ElementsAre("Tag 1: 0001:03:00.0"));
  EXPECT_THAT(Doubtful("slot-address-dangling", At(0, {3, 0, 0})), IsEmpty());
  EXPECT_THAT(Doubtful("slot-address-dangling", At(0, {9, 0, 0}, kAvailable)), IsEmpty());
  ClassFacts unknown = At(0, {9, 0, 0});
  unknown.list->clear();
  unknown.functions.clear();
  EXPECT_THAT(Doubtful("slot-address-dangling", unknown), IsEmpty());
}

TEST(CheckSlots, SlotOnBusZero) {
  EXPECT_THAT(Details("slot-on-bus-zero", At(0, {0, 1, 0})), ElementsAre("Tag 1: 0000:00:01.0"));
  EXPECT_THAT(Doubtful("slot-on-bus-zero", At(0, {0, 1, 0}, kAvailable)), IsEmpty());
  EXPECT_THAT(Doubtful("slot-on-bus-zero", At(0, {1, 0, 0})), IsEmpty());
}

TEST(CheckSlots, SlotInOtherDomain) {
  EXPECT_THAT(Details("slot-in-other-domain", At(2, {3, 0, 0})),
              ElementsAre("Tag 1: 0002:03:00.0"));
  EXPECT_THAT(Doubtful("slot-in-other-domain", At(0, {3, 0, 0})), IsEmpty());
  EXPECT_THAT(Doubtful("slot-in-other-domain", At(0xFFFF, {3, 0, 0})), IsEmpty());
}

TEST(CheckSlots, SlotNeighbour) {
  ClassFacts facts = MakeSoundFacts();
  EXPECT_THAT(Doubtful("slot-neighbour", facts), IsEmpty());
  std::vector<PciFunction>& functions = facts.slots.slots.front().functions;
  functions.push_back(Published({3, 0, 1}).function);  // of the same card
  functions.push_back(Published({4, 5, 0}).function);  // behind the card
  EXPECT_THAT(Doubtful("slot-neighbour", facts), IsEmpty());
  functions.push_back(Published({3, 1, 0}).function);
  EXPECT_THAT(Details("slot-neighbour", facts), ElementsAre("03:01.0: Tag 1 is at 03:00.0"));
}

TEST(CheckSlots, SlotNumberShared) {
  ClassFacts facts = MakeSoundFacts();
  facts.slotRecords.haveAddresses = false;
  facts.published.front().slotNumber = 1;
  EXPECT_THAT(Doubtful("slot-number-shared", facts), IsEmpty());
  facts.slots.slots.push_back(PublishedSlot(2));
  facts.slots.slots.back().id = 0x101;  // functions carry one byte of it
  EXPECT_THAT(Details("slot-number-shared", facts),
              ElementsAre("03:00.0: 2 slots have the number 1"));
  facts.slotRecords.haveAddresses = true;
  EXPECT_THAT(Doubtful("slot-number-shared", facts), IsEmpty());
}

TEST(CheckSlots, SlotIdShared) {
  ClassFacts facts = MakeSoundFacts();
  facts.slots.slots.push_back(PublishedSlot(2));
  facts.slots.slots.push_back(PublishedSlot(3));
  EXPECT_THAT(Doubtful("slot-id-shared", facts), IsEmpty());
  facts.slots.slots[2].id = 1;
  EXPECT_THAT(Details("slot-id-shared", facts),
              ElementsAre("Tag 1: slot ID 1", "Tag 3: slot ID 1"));
  facts.slots.slots[0].id.reset();
  facts.slots.slots[2].id.reset();
  EXPECT_THAT(Doubtful("slot-id-shared", facts), IsEmpty());
}

TEST(CheckSlots, SlotDesignationShared) {
  ClassFacts facts = MakeSoundFacts();
  facts.slots.slots.push_back(PublishedSlot(2));
  EXPECT_THAT(Doubtful("slot-designation-shared", facts), IsEmpty());
  facts.slots.slots[1].designation = "SLOT1  ";
  EXPECT_THAT(Details("slot-designation-shared", facts),
              ElementsAre("Tag 1: SLOT1", "Tag 2: SLOT1"));
  facts.slots.slots[0].designation = " ";
  facts.slots.slots[1].designation.reset();
  EXPECT_THAT(Doubtful("slot-designation-shared", facts), IsEmpty());
}

}  // namespace
}  // namespace pciinfo
