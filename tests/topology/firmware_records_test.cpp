// SPDX-License-Identifier: Apache-2.0
#include "topology/firmware_records.h"

#include <gtest/gtest.h>

#include <vector>

namespace topology {
namespace {

/// The bytes of a structure: type, length and handle before `fields`, `strings` behind them.
std::vector<unsigned char> StructureOf(unsigned char type, std::vector<unsigned char> fields,
                                       const std::string& strings) {
  std::vector<unsigned char> bytes{type, static_cast<unsigned char>(4 + fields.size()), 0x46, 0x00};
  bytes.insert(bytes.end(), fields.begin(), fields.end());
  bytes.insert(bytes.end(), strings.begin(), strings.end());
  bytes.resize(bytes.size() + (strings.empty() ? 2 : 1));
  return bytes;
}

const std::string kOneString("  PCIEX16_1 \0", 13);
const std::vector<unsigned char> kSlot{1,    0xAA, 0x0D, 4,    3,    7,   0,
                                       0x0C, 0x02, 0x00, 0x00, 0x65, 0x09};

TEST(SlotRecord, IsDecoded) {
  const auto record = DecodeSlotRecord(StructureOf(9, kSlot, kOneString));
  ASSERT_TRUE(record);
  EXPECT_EQ(record->handle, 0x46);
  EXPECT_EQ(record->designation, "PCIEX16_1");
  EXPECT_EQ(record->type, 0xAA);
  EXPECT_EQ(record->width, 0x0D);
  EXPECT_EQ(record->usage, 4);
  EXPECT_EQ(record->length, 3);
  EXPECT_EQ(record->id, 7);
  EXPECT_TRUE(record->hotPlug);
  EXPECT_EQ(record->address, (Address{0, 0x65, 1, 1}));
  EXPECT_TRUE(record->peers.empty());
}

TEST(SlotRecord, OfAnOldVersionHasNoAddress) {
  std::vector<unsigned char> fields(kSlot.begin(), kSlot.begin() + 9);
  const auto record = DecodeSlotRecord(StructureOf(9, fields, kOneString));
  ASSERT_TRUE(record);
  EXPECT_FALSE(record->address);
  EXPECT_EQ(record->designation, "PCIEX16_1");
  EXPECT_FALSE(DecodeSlotRecord(StructureOf(9, {}, "")));
  EXPECT_FALSE(DecodeSlotRecord({}));
}

TEST(SlotRecord, ListsItsPeersAsFarAsItReaches) {
  std::vector<unsigned char> fields = kSlot;
  const std::vector<unsigned char> peers{0, 2, 0, 0, 0x66, 0x10, 8, 1, 0, 0x67, 0x00, 8};
  fields.insert(fields.end(), peers.begin(), peers.end());
  const auto record = DecodeSlotRecord(StructureOf(9, fields, kOneString));
  ASSERT_TRUE(record);
  EXPECT_EQ(record->peers, (std::vector<Address>{{0, 0x66, 2, 0}, {1, 0x67, 0, 0}}));
  fields[14] = 132;  // some boards count more than there is
  EXPECT_EQ(DecodeSlotRecord(StructureOf(9, fields, kOneString))->peers.size(), 2U);
}

TEST(SlotRecord, AStringThatIsMissingIsEmpty) {
  std::vector<unsigned char> fields = kSlot;
  for (const unsigned char number : std::initializer_list<unsigned char>{0, 2, 255}) {
    fields[0] = number;
    EXPECT_EQ(DecodeSlotRecord(StructureOf(9, fields, kOneString))->designation, "") << +number;
  }
  fields[0] = 2;
  EXPECT_EQ(DecodeSlotRecord(StructureOf(9, fields, std::string("a\0b\0", 4)))->designation, "b");
  std::vector<unsigned char> cut = StructureOf(9, fields, std::string("a\0b", 3));
  cut.resize(cut.size() - 2);
  EXPECT_EQ(DecodeSlotRecord(cut)->designation, "");
  std::vector<unsigned char> longer = StructureOf(9, kSlot, "");
  longer[1] = 200;  // longer than the bytes
  EXPECT_TRUE(DecodeSlotRecord(longer));
}

TEST(BoardRecord, IsDecoded) {
  const std::vector<unsigned char> fields{0, 1, 0, 0, 0, 9, 0, 3, 0, 0x0A, 3, 0x46, 0, 0x47, 9};
  const auto record = DecodeBoardRecord(StructureOf(2, fields, std::string("Riser 2 \0", 9)));
  ASSERT_TRUE(record);
  EXPECT_EQ(record->product, "Riser 2");
  EXPECT_EQ(record->contained, (std::vector<std::uint16_t>{0x46, 0x0947})) << "the third is cut";
  EXPECT_FALSE(DecodeBoardRecord(StructureOf(2, {0, 1, 0, 0}, "")));
}

TEST(OnBoardRecord, IsDecoded) {
  const auto record = DecodeOnBoardRecord(
      StructureOf(41, {1, 0x85, 1, 0x00, 0x01, 0x02, 0xFA}, std::string("LAN 1\0", 6)));
  ASSERT_TRUE(record);
  EXPECT_EQ(record->designation, "LAN 1");
  EXPECT_TRUE(record->enabled);
  EXPECT_EQ(record->address, (Address{0x0100, 0x02, 0x1F, 2}));
  EXPECT_FALSE(DecodeOnBoardRecord(StructureOf(41, {1, 0x85}, "")));
}

}  // namespace
}  // namespace topology
