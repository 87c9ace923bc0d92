// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/machine_facts_maker.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> Narrow(const MachineFacts& facts) { return FoundBy("link-narrow", facts); }

std::vector<std::string> Slow(const MachineFacts& facts) { return FoundBy("link-slow", facts); }

/// The network card of a healthy machine with another link.
MachineFacts WithNetworkLink(const Link& link) {
  MachineFacts facts = MakeHealthyMachine();
  facts.machine.functions[kNetwork].link = link;
  return facts;
}

const Link kNarrow{4, "8.0 GT/s", 8, "8.0 GT/s"};
const Link kSlow{8, "2.5 GT/s", 8, "8.0 GT/s"};

TEST(NarrowLink, IsFound) {
  EXPECT_THAT(Narrow(WithNetworkLink(kNarrow)),
              ElementsAre("01:00.0: x4 of x8 below port 00:01.0, in SLOT1"));
}

TEST(NarrowLink, MayBeAllThatThePortHas) {
  MachineFacts facts = WithNetworkLink(kNarrow);
  facts.machine.functions[kNetworkPort].link.maxWidth = 4;
  EXPECT_THAT(Narrow(facts), IsEmpty());
}

TEST(NarrowLink, MayBeAllThatTheSlotHas) {
  MachineFacts facts = WithNetworkLink({4, "8.0 GT/s", 16, "8.0 GT/s"});
  facts.machine.slots[kSlot1].width = 0x0A;  // x4
  EXPECT_THAT(Narrow(facts), IsEmpty());
  facts.machine.slots[kSlot1].width = 0x0B;  // x8
  EXPECT_THAT(Narrow(facts), ElementsAre("01:00.0: x4 of x8 below port 00:01.0, in SLOT1"));
  facts.machine.slots[kSlot1].width = 0x02;  // no width of PCI Express
  EXPECT_THAT(Narrow(facts), ElementsAre("01:00.0: x4 of x16 below port 00:01.0, in SLOT1"));
}

TEST(NarrowLink, MayBeAllThatOneOfSeveralSlotsHas) {
  MachineFacts facts = WithNetworkLink(kNarrow);
  facts.machine.slots[kEmptySlot].ports = {"0000:00:01.0"};
  facts.machine.slots[kEmptySlot].width = 0x0A;  // x4
  EXPECT_THAT(Narrow(facts), IsEmpty());
}

TEST(NarrowLink, IsUnknownWhereTheLinkIs) {
  EXPECT_THAT(Narrow(WithNetworkLink({std::nullopt, "", 8, "8.0 GT/s"})), IsEmpty());
  EXPECT_THAT(Narrow(WithNetworkLink({4, "8.0 GT/s", std::nullopt, ""})), IsEmpty());
}

TEST(NarrowLink, IsToldForTheFirstFunctionOnly) {
  MachineFacts facts = WithNetworkLink(kNarrow);
  facts.machine.functions[kNetwork].address.address.function = 1;
  EXPECT_THAT(Narrow(facts), IsEmpty());
}

TEST(SlowLink, IsFoundOnCardsThatKeepTheirSpeed) {
  EXPECT_THAT(Slow(WithNetworkLink(kSlow)),
              ElementsAre("01:00.0: 2.5 of 8 GT/s below port 00:01.0, in SLOT1"));
}

TEST(SlowLink, IsNormalForIdleGraphics) {
  EXPECT_THAT(Slow(MakeHealthyMachine()), IsEmpty());
  MachineFacts facts = WithNetworkLink(kSlow);
  facts.machine.functions[kNetwork].baseClass = 0x12;
  EXPECT_THAT(Slow(facts), IsEmpty());
}

TEST(SlowLink, IsNormalForACardThatSleeps) {
  MachineFacts facts = WithNetworkLink(kSlow);
  facts.functions[kNetwork].powerState = "D3hot";
  EXPECT_THAT(Slow(facts), IsEmpty());
  facts.functions[kNetwork].powerState = "";
  EXPECT_EQ(Slow(facts).size(), 1U);
}

TEST(SlowLink, MayBeAllThatPortOrSlotCanDo) {
  MachineFacts facts = WithNetworkLink(kSlow);
  facts.machine.functions[kNetworkPort].link.maxSpeed = "2.5 GT/s";
  EXPECT_THAT(Slow(facts), IsEmpty());
  facts = WithNetworkLink({8, "5.0 GT/s", 8, "16.0 GT/s"});
  facts.machine.slots[kSlot1].type = 0xAF;  // PCI Express 2 x8
  EXPECT_THAT(Slow(facts), IsEmpty());
  facts.machine.slots[kSlot1].type = 0xB5;  // PCI Express 3 x8
  EXPECT_THAT(Slow(facts), ElementsAre("01:00.0: 5 of 8 GT/s below port 00:01.0, in SLOT1"));
}

TEST(SlowLink, IsUnknownWhereTheSpeedIs) {
  EXPECT_THAT(Slow(WithNetworkLink({8, "", 8, "8.0 GT/s"})), IsEmpty());
  EXPECT_THAT(Slow(WithNetworkLink({8, "2.5 GT/s", 8, ""})), IsEmpty());
}

}  // namespace
}  // namespace pciinfo
