// SPDX-License-Identifier: Apache-2.0
#include "plugin/structure_reader.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "plugin/smbios_handle.h"
#include "tests/fakes/framework.h"
#include "tests/fakes/slot_record.h"

class StructureReaderTest : public testing::Test {
 protected:
  StructureReaderTest() { Fake() = {}; }

  void Load(const std::vector<std::vector<unsigned char>>& structures) {
    Fake().smBios.structures = structures;
    ASSERT_EQ(smBios.Load(nullptr), 0);
  }

  SmBiosHandle smBios;
};

TEST_F(StructureReaderTest, DeliversStructuresOfOneTypeInTableOrder) {
  std::vector<unsigned char> other = SlotRecord().Bytes();
  other[0] = 4;
  SlotRecord second;
  second.slotId = 0x0203;
  Load({other, SlotRecord().Bytes(), second.Bytes()});
  StructureReader reader(smBios.Get());
  EXPECT_EQ(reader.First(9), 0);
  EXPECT_EQ(reader.AsSlot().slotId.Value(), 1);
  EXPECT_EQ(reader.Next(), 0);
  EXPECT_EQ(reader.AsSlot().slotId.Value(), 0x0203);
  EXPECT_NE(reader.Next(), 0);
}

TEST_F(StructureReaderTest, ShortStructureIsFollowedByZerosNotByTheOneBefore) {
  SlotRecord longer;
  longer.length = 0x18;
  longer.peerCount = 8;
  SlotRecord shorter;
  shorter.length = 0x0D;
  shorter.strings = {};
  Load({longer.Bytes(), shorter.Bytes()});
  StructureReader reader(smBios.Get());
  reader.First(9);
  EXPECT_EQ(reader.AsSlot().peerGroupingCount, 8);
  reader.Next();
  EXPECT_EQ(reader.AsSlot().peerGroupingCount, 0);
}

TEST_F(StructureReaderTest, BufferIsZeroAroundTheLargestStructure) {
  Load({std::vector<unsigned char>(StructureReader::kCapacity, 9)});
  StructureReader reader(smBios.Get());
  ASSERT_EQ(reader.First(9), 0);
  const unsigned char* structure = reader.Get();
  const auto isZero = [](unsigned char byte) { return byte == 0; };
  EXPECT_TRUE(std::all_of(structure - StructureReader::kGuardBefore, structure, isZero));
  const unsigned char* end = structure + StructureReader::kCapacity;
  EXPECT_TRUE(std::all_of(end, end + StructureReader::kGuardAfter, isZero));
}

TEST_F(StructureReaderTest, LargerStructureIsRefused) {
  Load({std::vector<unsigned char>(StructureReader::kCapacity + 1, 9)});
  StructureReader reader(smBios.Get());
  EXPECT_NE(reader.First(9), 0);
  EXPECT_EQ(reader.Get()[0], 0);
}

TEST(SmBiosHandleTest, IsClosedAtTheEndOfItsScope) {
  Fake() = {};
  {
    SmBiosHandle handle;
    ASSERT_EQ(handle.Load(nullptr), 0);
    EXPECT_EQ(Fake().smBios.openHandles, 1);
  }
  EXPECT_EQ(Fake().smBios.openHandles, 0);
}

TEST(SmBiosHandleTest, ClosingByHandTellsTheStatusAndClosesOnce) {
  Fake() = {};
  Fake().smBios.closeStatus = 3;
  {
    SmBiosHandle handle;
    ASSERT_EQ(handle.Load(nullptr), 0);
    EXPECT_EQ(handle.Close(), 3);
    EXPECT_EQ(handle.Get(), nullptr);
  }
  EXPECT_EQ(Fake().smBios.openHandles, 0);
}

TEST(SmBiosHandleTest, FailedLoadLeavesNothingToClose) {
  Fake() = {};
  Fake().smBios.loadStatus = 4;
  {
    SmBiosHandle handle;
    EXPECT_EQ(handle.Load(nullptr), 4);
    EXPECT_EQ(handle.Get(), nullptr);
  }
  EXPECT_EQ(Fake().smBios.openHandles, 0);
}
