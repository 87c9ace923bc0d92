// SPDX-License-Identifier: Apache-2.0
#include "topology/virtual_functions.h"

#include <gtest/gtest.h>

#include "tests/topology/config_bytes.h"

namespace topology {
namespace {

Bytes PhysicalFunction(unsigned control) {
  Bytes bytes(0x200);
  bytes.Put(0x108, control, 2).Put(0x10C, 63, 2).Put(0x10E, 64, 2).Put(0x110, 5, 2);
  return bytes.Put(0x114, 128, 2).Put(0x116, 2, 2).Put(0x11A, 0x154C, 2);
}

TEST(VirtualFunctions, HaveNumbersPlacesAndADevice) {
  const auto found = DecodeVirtualFunctions(PhysicalFunction(1).Get(), 0x100);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->total, 64);
  EXPECT_EQ(found->enabled, 5);
  EXPECT_EQ(found->firstOffset, 128);
  EXPECT_EQ(found->stride, 2);
  EXPECT_EQ(found->deviceId, 0x154C);
}

TEST(VirtualFunctions, AreNoneUntilTheyAreEnabled) {
  EXPECT_EQ(DecodeVirtualFunctions(PhysicalFunction(0x18).Get(), 0x100)->enabled, 0);
}

TEST(VirtualFunctions, OfACapabilityThatIsCutOffAreNotKnown) {
  EXPECT_FALSE(DecodeVirtualFunctions(Bytes(0x11B).Get(), 0x100));
  EXPECT_TRUE(DecodeVirtualFunctions(Bytes(0x11C).Get(), 0x100));
}

}  // namespace
}  // namespace topology
