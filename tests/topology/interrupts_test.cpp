// SPDX-License-Identifier: Apache-2.0
#include "topology/interrupts.h"

#include <gtest/gtest.h>

#include "tests/topology/config_bytes.h"

namespace topology {
namespace {

/// MSI at 0x40, MSI-X at 0x60, pin A.
Bytes BothKinds(unsigned msiFlags, unsigned msixFlags) {
  Bytes bytes(256);
  bytes.List(0x40).Put(0x3D, 1);
  bytes.Put(0x40, 0x05).Put(0x41, 0x60).Put(0x42, msiFlags, 2);
  bytes.Put(0x60, 0x11).Put(0x62, msixFlags, 2);
  return bytes;
}

TEST(Interrupts, CountVectorsAsPowersOfTwoInMsi) {
  const Interrupts found = DecodeInterrupts(BothKinds(0x002B, 0).Get());
  ASSERT_TRUE(found.msi);
  EXPECT_TRUE(found.msi->enabled);
  EXPECT_EQ(found.msi->vectors, 32);
  EXPECT_EQ(found.msi->enabledVectors, 4);
  EXPECT_STREQ(found.GetMode(), "MSI");
}

TEST(Interrupts, CountTheTableOfMsix) {
  const Interrupts found = DecodeInterrupts(BothKinds(0x000A, 0x8081).Get());
  ASSERT_TRUE(found.msix);
  EXPECT_EQ(found.msix->vectors, 130);
  EXPECT_EQ(found.msix->enabledVectors, 130);
  EXPECT_EQ(found.msi->enabledVectors, 0);
  EXPECT_STREQ(found.GetMode(), "MSI-X");
}

TEST(Interrupts, AreByThePinWhereNoMessagesAreEnabled) {
  EXPECT_STREQ(DecodeInterrupts(BothKinds(0, 0).Get()).GetMode(), "INTx");
  EXPECT_EQ(DecodeInterrupts(BothKinds(0, 0).Get()).msix->enabledVectors, 0);
  EXPECT_STREQ(DecodeInterrupts(BothKinds(0, 0).Put(0x04, 0x0400, 2).Get()).GetMode(), "none");
  EXPECT_STREQ(DecodeInterrupts(BothKinds(0, 0).Put(0x3D, 0).Get()).GetMode(), "none");
  EXPECT_EQ(DecodeInterrupts(BothKinds(0, 0).Put(0x3D, 0xFF).Get()).pin, 0) << "no such pin";
}

TEST(Interrupts, AreNotKnownWithoutCapabilities) {
  const Interrupts found = DecodeInterrupts(Bytes(64).List(0x40).Put(0x3D, 2).Get());
  EXPECT_EQ(found.pin, 2);
  EXPECT_FALSE(found.capabilitiesKnown);
  EXPECT_STREQ(found.GetMode(), "");
}

TEST(Interrupts, OfACapabilityThatIsCutOffAreNone) {
  const Interrupts found = DecodeInterrupts(Bytes(256).List(0xFC).Put(0xFC, 0x05).Get());
  ASSERT_TRUE(found.msi);
  EXPECT_EQ(found.msi->enabledVectors, 0);
  EXPECT_FALSE(DecodeInterrupts(Bytes(254).List(0xFC).Put(0xFC, 0x05).Get()).msi);
}

}  // namespace
}  // namespace topology
