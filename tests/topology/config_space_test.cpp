// SPDX-License-Identifier: Apache-2.0
#include "topology/config_space.h"

#include <gtest/gtest.h>

#include "tests/topology/config_bytes.h"
#include "topology/config_facts.h"

namespace topology {
namespace {

std::vector<int> Offsets(const std::vector<Capability>& list) {
  std::vector<int> offsets;
  for (const Capability& capability : list) offsets.push_back(capability.offset);
  return offsets;
}

TEST(ConfigSpace, NumbersAreLittleEndianAndEndWithTheBytes) {
  const ConfigSpace config = Bytes(64).Put(60, 0x44332211, 4).Get();
  EXPECT_EQ(config.Byte(63), 0x44);
  EXPECT_EQ(config.Word(62), 0x4433);
  EXPECT_EQ(config.Dword(60), 0x44332211U);
  EXPECT_FALSE(config.Byte(64));
  EXPECT_FALSE(config.Word(63));
  EXPECT_FALSE(config.Dword(61));
  EXPECT_FALSE(config.Dword(std::size_t(-1)));
  EXPECT_FALSE(ConfigSpace().Word(0));
}

TEST(ConfigSpace, WalksTheCapabilitiesInTheirOrder) {
  const ConfigSpace config =
      Bytes(256).List(0x80).Put(0x80, 0x01).Put(0x81, 0x40).Put(0x40, 0x10).Put(0x41, 0).Get();
  EXPECT_EQ(Offsets(config.GetCapabilities()), (std::vector<int>{0x80, 0x40}));
  EXPECT_EQ(FindCapability(config.GetCapabilities(), 0x10), 0x40);
  EXPECT_FALSE(FindCapability(config.GetCapabilities(), 0x11));
}

TEST(ConfigSpace, HasNoCapabilitiesWithoutTheStatusBit) {
  EXPECT_TRUE(Bytes(256).Put(0x34, 0x40).Put(0x40, 0x10).Get().GetCapabilities().empty());
}

TEST(ConfigSpace, AListThatLeadsToItselfEnds) {
  const ConfigSpace self = Bytes(256).List(0x40).Put(0x40, 0x10).Put(0x41, 0x40).Get();
  EXPECT_EQ(Offsets(self.GetCapabilities()), (std::vector<int>{0x40}));
  const ConfigSpace two =
      Bytes(256).List(0x40).Put(0x40, 5).Put(0x41, 0x50).Put(0x50, 1).Put(0x51, 0x40).Get();
  EXPECT_EQ(Offsets(two.GetCapabilities()), (std::vector<int>{0x40, 0x50}));
}

TEST(ConfigSpace, AListThatLeavesTheBytesEnds) {
  EXPECT_TRUE(Bytes(64).List(0x40).Get().GetCapabilities().empty()) << "an unprivileged user";
  EXPECT_TRUE(Bytes(256).List(0x08).Get().GetCapabilities().empty()) << "into the header";
  const ConfigSpace dead = Bytes(256).List(0x40).Put(0x40, 0xFFFF, 2).Get();
  EXPECT_TRUE(dead.GetCapabilities().empty()) << "a function that no longer answers";
}

TEST(ConfigSpace, TheLowBitsOfAPointerAreReserved) {
  const ConfigSpace config = Bytes(256).List(0x43).Put(0x40, 0x10).Get();
  EXPECT_EQ(Offsets(config.GetCapabilities()), (std::vector<int>{0x40}));
}

TEST(ConfigSpace, WalksTheExtendedCapabilities) {
  const ConfigSpace config = Bytes(4096).Put(0x100, 0x14810001, 4).Put(0x148, 0x00010003, 4).Get();
  EXPECT_EQ(Offsets(config.GetExtendedCapabilities()), (std::vector<int>{0x100, 0x148}));
  EXPECT_TRUE(Bytes(256).Get().GetExtendedCapabilities().empty());
  EXPECT_TRUE(Bytes(4096).Get().GetExtendedCapabilities().empty());
  EXPECT_TRUE(Bytes(4096).Put(0x100, 0xFFFFFFFF, 4).Get().GetExtendedCapabilities().empty());
  const ConfigSpace loop = Bytes(4096).Put(0x100, 0x10010001, 4).Get();
  EXPECT_EQ(Offsets(loop.GetExtendedCapabilities()), (std::vector<int>{0x100}));
}

Bytes ExpressFunction(unsigned flags) {
  Bytes bytes(4096);
  bytes.List(0x40).Put(0x40, 0x10).Put(0x42, flags, 2);
  return bytes;
}

TEST(ConfigFacts, OfAHeader) {
  const ConfigFacts facts = DecodeConfig(Bytes(64)
                                             .Put(0x00, 0x10DE, 2)
                                             .Put(0x02, 0x2231, 2)
                                             .Put(0x08, 0x030000A1, 4)
                                             .Put(0x0E, 0x80)
                                             .Put(0x2C, 0x147E10DE, 4)
                                             .Get());
  EXPECT_EQ(facts.vendor, 0x10DE);
  EXPECT_EQ(facts.device, 0x2231);
  EXPECT_EQ(facts.Class(), 0x0300);
  EXPECT_EQ(facts.BaseClass(), 3);
  EXPECT_EQ(facts.revision, 0xA1);
  EXPECT_TRUE(facts.multiFunction);
  EXPECT_EQ(facts.subsystemVendor, 0x10DE);
  EXPECT_EQ(facts.subsystemDevice, 0x147E);
  EXPECT_FALSE(facts.capabilitiesKnown);
  EXPECT_FALSE(facts.express);
}

TEST(ConfigFacts, OfABridgeTakeTheSubsystemFromItsCapability) {
  const ConfigFacts facts = DecodeConfig(Bytes(256)
                                             .List(0x40)
                                             .Put(0x0E, 1)
                                             .Put(0x18, 0x060504, 3)
                                             .Put(0x2C, 0xFFFFFFFF, 4)
                                             .Put(0x40, 0x0D)
                                             .Put(0x44, 0x5678, 2)
                                             .Put(0x46, 0x1234, 2)
                                             .Get());
  ASSERT_TRUE(facts.bridge);
  EXPECT_EQ(facts.bridge->primary, 4);
  EXPECT_EQ(facts.bridge->secondary, 5);
  EXPECT_EQ(facts.bridge->subordinate, 6);
  EXPECT_EQ(facts.subsystemVendor, 0x5678);
  EXPECT_EQ(facts.subsystemDevice, 0x1234);
}

TEST(ConfigFacts, OfACardBusBridge) {
  const ConfigFacts facts = DecodeConfig(Bytes(256)
                                             .Put(0x0E, 2)
                                             .Put(0x18, 0x090807, 3)
                                             .Put(0x40, 0x1111, 2)
                                             .Put(0x42, 0x2222, 2)
                                             .Get());
  ASSERT_TRUE(facts.bridge);
  EXPECT_EQ(facts.bridge->secondary, 8);
  EXPECT_EQ(facts.subsystemVendor, 0x1111);
  EXPECT_EQ(facts.subsystemDevice, 0x2222);
}

TEST(ConfigFacts, OfAPortWithASlot) {
  const ConfigFacts facts =
      DecodeConfig(ExpressFunction(0x0142)
                       .Put(0x4C, 0x00000103, 4)  // x16, 8 GT/s at most
                       .Put(0x52, 0x2081, 2)      // x8, 2.5 GT/s, active
                       .Put(0x54, 0x00480060, 4)  // number 9, hot-plug, surprise
                       .Put(0x5A, 0x0040, 2)
                       .Get());
  ASSERT_TRUE(facts.express);
  EXPECT_TRUE(facts.express->Is(PortType::kRootPort));
  EXPECT_EQ(facts.express->most, (Link{3, 16}));
  EXPECT_EQ(facts.express->now, (Link{1, 8}));
  EXPECT_TRUE(facts.express->linkActive);
  ASSERT_TRUE(facts.express->slot);
  EXPECT_EQ(facts.express->slot->physicalNumber, 9);
  EXPECT_TRUE(facts.express->slot->hotPlug);
  EXPECT_TRUE(facts.express->slot->surprise);
  EXPECT_TRUE(facts.express->slot->cardPresent);
}

TEST(ConfigFacts, OfASlotWithEquipment) {
  const PortSlot slot = DecodeConfig(ExpressFunction(0x0142)
                                         .Put(0x54, 0x0000001E, 4)  // all but the button
                                         .Put(0x58, 0x0580, 2)      // power off, on, blinking
                                         .Put(0x5A, 0x0022, 2)      // power fault, latch open
                                         .Get())
                            .express->slot.value();
  EXPECT_EQ(slot.powerOn, false);
  EXPECT_EQ(slot.attentionIndicator, Indicator::kBlinking);
  EXPECT_EQ(slot.powerIndicator, Indicator::kOn);
  EXPECT_EQ(slot.latchOpen, true);
  EXPECT_TRUE(slot.powerFault);
}

TEST(ConfigFacts, RegistersOfEquipmentThatASlotHasNotMeanNothing) {
  const PortSlot slot =
      DecodeConfig(ExpressFunction(0x0142).Put(0x58, 0x0580, 2).Put(0x5A, 0x0022, 2).Get())
          .express->slot.value();
  EXPECT_FALSE(slot.powerOn || slot.attentionIndicator || slot.powerIndicator || slot.latchOpen);
  EXPECT_FALSE(slot.powerFault);
}

TEST(ConfigFacts, PartsOfTheRootComplexHaveNoLink) {
  for (const unsigned flags : {0x0092U, 0x00A2U}) {
    const ConfigFacts facts =
        DecodeConfig(ExpressFunction(flags).Put(0x4C, 0x0103, 4).Put(0x52, 0x2081, 2).Get());
    EXPECT_EQ(facts.express.value().most, Link());
    EXPECT_EQ(facts.express.value().now, Link());
  }
}

TEST(ConfigFacts, TheSlotBitCountsOnPortsOnly) {
  EXPECT_TRUE(DecodeConfig(ExpressFunction(0x0162).Get()).express->slot);
  EXPECT_FALSE(DecodeConfig(ExpressFunction(0x0062).Get()).express->slot);
  EXPECT_FALSE(DecodeConfig(ExpressFunction(0x0102).Get()).express->slot);
}

TEST(ConfigFacts, OfAPortThatForwardsAlternativeRoutingIds) {
  EXPECT_TRUE(
      DecodeConfig(ExpressFunction(0x0042).Put(0x68, 0x20, 2).Get()).express->forwardsRoutingIds);
  EXPECT_FALSE(
      DecodeConfig(ExpressFunction(0x0042).Put(0x68, 0x10, 2).Get()).express->forwardsRoutingIds);
  EXPECT_FALSE(
      DecodeConfig(ExpressFunction(0x0041).Put(0x68, 0x20, 2).Get()).express->forwardsRoutingIds)
      << "the first version of the capability ends before that register";
  EXPECT_FALSE(
      DecodeConfig(ExpressFunction(0x0002).Put(0x68, 0x20, 2).Get()).express->forwardsRoutingIds)
      << "an endpoint";
}

TEST(ConfigFacts, HaveWords) {
  EXPECT_EQ(SpeedText(1), "2.5 GT/s");
  EXPECT_EQ(SpeedText(6), "64.0 GT/s");
  EXPECT_EQ(SpeedText(0), "");
  EXPECT_EQ(SpeedText(7), "");
  EXPECT_EQ(TransferRate(1), 2500U);
  EXPECT_EQ(TransferRate(6), 64000U);
  EXPECT_EQ(TransferRate(0), 0U);
  EXPECT_EQ(TransferRate(15), 0U);
  EXPECT_EQ(PortTypeText(4), "root port");
  EXPECT_EQ(PortTypeText(2), "");
}

}  // namespace
}  // namespace topology
