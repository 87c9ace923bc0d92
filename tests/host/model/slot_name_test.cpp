// SPDX-License-Identifier: Apache-2.0
#include "host/model/slot_name.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

Slot Made(const char* designation) {
  Slot slot;
  slot.tag = "Tag 4";
  slot.id = 6;
  if (designation != nullptr) slot.designation = designation;
  return slot;
}

TEST(SlotName, IsTheDesignationOrElseTheTag) {
  EXPECT_EQ(SlotName(Made(" PCIE 1  ")), "PCIE 1");
  EXPECT_EQ(SlotName(Made("J\x01")), "J?");
  EXPECT_EQ(SlotName(Made("   ")), "Tag 4");
  EXPECT_EQ(SlotName(Made(nullptr)), "Tag 4");
}

TEST(SlotName, NumbersAreSlotIds) {
  EXPECT_TRUE(IsNamed(Made("X"), "6"));
  EXPECT_TRUE(IsNamed(Made("X"), "06"));
  EXPECT_FALSE(IsNamed(Made("X"), "4"));
  EXPECT_FALSE(IsNamed(Made("X"), "6x"));
}

TEST(SlotName, ADesignationMayBeANumberToo) { EXPECT_TRUE(IsNamed(Made("12"), "12")); }

TEST(SlotName, OtherNamesAreDesignationsAndTags) {
  EXPECT_TRUE(IsNamed(Made("PCIE 1  "), "pcie 1"));
  EXPECT_TRUE(IsNamed(Made("PCIE 1"), "TAG 4"));
  EXPECT_FALSE(IsNamed(Made("PCIE 1"), "PCIE"));
  EXPECT_FALSE(IsNamed(Made(""), ""));
  EXPECT_FALSE(IsNamed(Made(nullptr), ""));
}

}  // namespace
}  // namespace pciinfo
