// SPDX-License-Identifier: Apache-2.0
#include "topology/extended_facts.h"

#include <gtest/gtest.h>

#include "tests/topology/config_bytes.h"

namespace topology {
namespace {

TEST(ExtendedFacts, AreInTheCapabilitiesOfTheList) {
  const ExtendedFacts facts = DecodeExtended(Bytes(4096)
                                                 .Put(0x100, 0x20010003, 4)
                                                 .Put(0x104, 0x44332211, 4)
                                                 .Put(0x108, 0x88776655, 4)
                                                 .Put(0x200, 0x30010010, 4)
                                                 .Put(0x20E, 64, 2)
                                                 .Put(0x300, 0x40010015, 4)
                                                 .Put(0x308, 0x20, 4)
                                                 .Put(0x400, 0x5001000E, 4)
                                                 .Put(0x404, 0x0300, 2)
                                                 .Put(0x500, 0x00010001, 4)
                                                 .Put(0x510, 1, 4)
                                                 .Get());
  EXPECT_TRUE(facts.known);
  EXPECT_EQ(facts.serialNumber, 0x8877665544332211U);
  EXPECT_EQ(facts.virtualFunctions.value().total, 64);
  EXPECT_EQ(facts.resizable.size(), 1U);
  EXPECT_EQ(facts.nextFunction, 3);
  EXPECT_EQ(facts.errors.value().correctable, 1U);
}

TEST(ExtendedFacts, AreAbsentWithoutTheirCapability) {
  const ExtendedFacts facts = DecodeExtended(Bytes(4096).Put(0x100, 0x0001000D, 4).Get());
  EXPECT_TRUE(facts.known);
  EXPECT_FALSE(facts.serialNumber || facts.virtualFunctions || facts.nextFunction || facts.errors);
  EXPECT_TRUE(facts.resizable.empty());
}

TEST(ExtendedFacts, AreNotKnownOf256Bytes) { EXPECT_FALSE(DecodeExtended(Bytes(256).Get()).known); }

TEST(ExtendedFacts, WriteTheSerialNumberHighestByteFirst) {
  EXPECT_EQ(SerialText(0x5A383960C600AA00), "5a-38-39-60-c6-00-aa-00");
  EXPECT_EQ(SerialText(1), "00-00-00-00-00-00-00-01");
}

}  // namespace
}  // namespace topology
