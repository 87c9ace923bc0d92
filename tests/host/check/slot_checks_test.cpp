// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/machine_facts_maker.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kNoAnswer = "the firmware says in use, and no function answers";

/// Takes the card out of a slot, of which the firmware does not know.
void MakeSilent(MachineSlot& slot) {
  slot.state = SlotState::kUnknown;
  slot.functions.clear();
  slot.conflicts = {kNoAnswer};
}

TEST(SilentSlot, IsFound) {
  MachineFacts facts = MakeHealthyMachine();
  MakeSilent(facts.machine.slots[kSlot1]);
  EXPECT_THAT(CodesOf(facts), ElementsAre("slot-silent"));
  EXPECT_THAT(FoundBy("slot-silent", facts), ElementsAre(std::string("SLOT1: ") + kNoAnswer));
}

TEST(SilentSlot, MayHoldADiskThatIsNotOnThePciBus) {
  MachineFacts facts = MakeHealthyMachine();
  MachineSlot& slot = facts.machine.slots[kSlot1];
  MakeSilent(slot);
  slot.type = 0x17;  // M.2 socket 3
  EXPECT_THAT(CodesOf(facts), IsEmpty());
  slot.type = 0xA5;  // PCI Express
  slot.name = "M.2_1";
  EXPECT_THAT(CodesOf(facts), IsEmpty());
  slot.conflicts = {"the link of port 0000:00:01.0 is active, and no function answers"};
  slot.usage.reset();
  EXPECT_THAT(CodesOf(facts), ElementsAre("slot-silent"));
}

TEST(SilentSlot, IsFoundWhereTheSlotReportsTheCard) {
  MachineFacts facts = MakeHealthyMachine();
  facts.machine.slots[kEmptySlot].conflicts = {
      "kernel slot 3 reports a card, and no function answers"};
  facts.machine.slots[kEmptySlot].state = SlotState::kUnknown;
  EXPECT_THAT(CodesOf(facts), ElementsAre("slot-silent"));
}

TEST(SilentSlot, IsNotBelievedOfFirmwareThatCallsAllSlotsInUse) {
  MachineFacts facts = MakeHealthyMachine();
  facts.machine.slots[kEmptySlot].usage = 4;
  facts.machine.slots[kEmptySlot].ports = {"0000:00:03.0"};
  MakeSilent(facts.machine.slots[kEmptySlot]);
  EXPECT_THAT(CodesOf(facts), ElementsAre("slot-silent")) << "one of three may have failed";
  MakeSilent(facts.machine.slots[kSlot2]);
  EXPECT_THAT(CodesOf(facts), ElementsAre("slot-usage-doubtful"));
  EXPECT_EQ(FoundBy("slot-usage-doubtful", facts).size(), 2U);
}

TEST(SilentSlot, IsBelievedWhereMoreThanTheRecordTellsOfACard) {
  MachineFacts facts = MakeHealthyMachine();
  facts.machine.slots[kEmptySlot].usage = 4;
  facts.machine.slots[kEmptySlot].ports = {"0000:00:03.0"};
  for (MachineSlot& slot : facts.machine.slots) MakeSilent(slot);
  facts.machine.slots[kSlot1].conflicts.emplace_back("port 0000:00:01.0 reports a card");
  EXPECT_EQ(FoundBy("slot-silent", facts).size(), 1U);
}

TEST(SlotUsage, IsBelievedWhereTheFirmwareCallsASlotAvailable) {
  MachineFacts facts = MakeHealthyMachine();
  MakeSilent(facts.machine.slots[kSlot1]);
  MakeSilent(facts.machine.slots[kSlot2]);
  EXPECT_THAT(CodesOf(facts), ElementsAre("slot-silent"));
}

TEST(ContradictedSlot, IsANote) {
  MachineFacts facts = MakeHealthyMachine();
  MachineSlot& slot = facts.machine.slots[kSlot1];
  slot.usage = 3;
  slot.conflicts = {"the firmware says available, and 0000:01:00.0 answers"};
  EXPECT_THAT(CodesOf(facts), ElementsAre("slot-contradicted"));
  slot.portHotPlug = true;
  EXPECT_THAT(CodesOf(facts), IsEmpty()) << "the card was added while the machine ran";
  slot.conflicts.emplace_back("the firmware lists 0000:01:00.0 as an onboard device as well");
  EXPECT_THAT(CodesOf(facts), ElementsAre("slot-contradicted"));
}

TEST(SlotPower, IsANoteWhereItIsOff) {
  MachineFacts facts = MakeHealthyMachine();
  MachineSlot& slot = facts.machine.slots[kSlot1];
  slot.functions.clear();
  slot.powerOn = false;
  slot.conflicts = {"a card is in the slot, which has no power"};
  EXPECT_THAT(CodesOf(facts), ElementsAre("slot-without-power"));
  slot.powerOn = true;
  slot.conflicts.clear();
  EXPECT_THAT(CodesOf(facts), IsEmpty());
}

TEST(SlotPower, HasFailedWhereAFaultIsReported) {
  MachineFacts facts = MakeHealthyMachine();
  facts.machine.slots[kSlot1].powerFault = false;
  EXPECT_THAT(CodesOf(facts), IsEmpty());
  facts.machine.slots[kSlot1].powerFault = true;
  EXPECT_THAT(FoundBy("slot-power-fault", facts), ElementsAre("SLOT1: "));
}

TEST(SlotName, IsRepeated) {
  MachineFacts facts = MakeHealthyMachine();
  facts.machine.slots[kSlot2].name = "SLOT1 (2)";
  facts.machine.slots[kSlot2].firmwareAddress = "0000:02:00.0";
  EXPECT_THAT(FoundBy("slot-name-repeated", facts),
              ElementsAre("SLOT1: slot ID 1", "SLOT1 (2): slot ID 2, at 0000:02:00.0"));
}

TEST(SlotName, MayHaveANumberOfItsOwn) {
  for (const char* name : {"SLOT9 (2)", "SLOT1 (x)", "SLOT1 (1)", "SLOT1 (2) left"}) {
    MachineFacts facts = MakeHealthyMachine();
    facts.machine.slots[kSlot2].name = name;
    EXPECT_THAT(FoundBy("slot-name-repeated", facts), IsEmpty()) << name;
  }
}

TEST(SlotName, ThatIsAPlaceholderIsNoName) {
  MachineFacts facts = MakeHealthyMachine();
  facts.machine.slots[kSlot1].name = "To Be Filled By O.E.M.";
  facts.machine.slots[kSlot2].name = "To Be Filled By O.E.M. (2)";
  EXPECT_THAT(FoundBy("slot-name-repeated", facts), IsEmpty());
}

TEST(SharedPort, IsANoteWhereCardsAreBehindIt) {
  MachineFacts facts = MakeHealthyMachine();
  facts.machine.functions[kNetwork].slot.reset();
  facts.machine.shared = {{"0000:00:01.0", {"SLOT1", "SLOT3"}, {0, 2}, {kNetwork}, ""}};
  EXPECT_THAT(FoundBy("slot-port-shared", facts), ElementsAre("01:00.0: in SLOT1 or SLOT3"));
  facts.machine.shared.front().functions.clear();
  EXPECT_THAT(CodesOf(facts), IsEmpty());
}

}  // namespace
}  // namespace pciinfo
