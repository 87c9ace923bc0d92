// SPDX-License-Identifier: Apache-2.0

// Usage that the firmware tells, presence that ports report, and what is there.

#include <gtest/gtest.h>

#include "tests/topology/resolved_machine.h"

namespace topology {
namespace {

/// A port to an empty bus, which reports whether there is a card.
PortSlot& AddHotPlugPort(MadeMachine& machine, const std::string& address, unsigned bus,
                         bool reportsCard) {
  PortSlot& slot = *machine.Port(address, bus, bus).config.express->slot;
  slot.hotPlug = true;
  slot.cardPresent = reportsCard;
  return slot;
}

TEST(SlotConflicts, UsageThatTheMachineContradictsIsAConflict) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Port("0000:00:02.0", 2, 2);
  machine.Record("Full", "0000:00:01.1").usage = 3;
  machine.Record("Dead", "0000:00:02.0").usage = 4;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNamed("Full").conflicts,
            (std::vector<std::string>{"the firmware says available, and 0000:01:00.0 answers"}));
  EXPECT_EQ(resolved.SlotNamed("Full").state, SlotState::kOccupied);
  EXPECT_EQ(resolved.SlotNamed("Dead").conflicts,
            (std::vector<std::string>{"the firmware says in use, and no function answers: the card "
                                      "may have failed, or is not seated well"}));
  EXPECT_EQ(resolved.SlotNamed("Dead").state, SlotState::kUnknown);
}

TEST(SlotConflicts, ACardThatTheFirmwareListsAsOnboardIsAConflict) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Record("Slot 1", "0000:00:01.1");
  machine.Get().onBoardRecords.push_back({0x29, "LAN", true, At("0000:01:00.1")});
  machine.Get().onBoardRecords.push_back({0x2A, "SAS", true, At("0000:05:00.0")});
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 1"), kCard);
  EXPECT_EQ(resolved.SlotNamed("Slot 1").conflicts,
            (std::vector<std::string>{
                "the firmware lists 0000:01:00.1 as the onboard device \"LAN\" as well"}));
}

TEST(SlotConflicts, ACardWithoutPowerIsThereAndDoesNotAnswer) {
  MadeMachine machine;
  machine.Port("0000:00:02.0", 2, 2);
  machine.Record("Slot 2", "0000:00:02.0");
  machine.KernelSlotAt("2", "0000:02:00");
  machine.Get().kernelSlots[0].power = 0;
  machine.Get().kernelSlots[0].adapter = 1;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNamed("Slot 2").state, SlotState::kOccupied);
  EXPECT_EQ(resolved.SlotNamed("Slot 2").conflicts,
            (std::vector<std::string>{"a card is in the slot, which has no power"}));
}

TEST(SlotConflicts, ThePortTellsOfThePowerWhereNoDriverDoes) {
  MadeMachine machine;
  AddHotPlugPort(machine, "0000:00:02.0", 2, true).powerOn = false;
  machine.Record("Slot 2", "0000:00:02.0");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNamed("Slot 2").state, SlotState::kOccupied);
  EXPECT_EQ(resolved.SlotNamed("Slot 2").conflicts,
            (std::vector<std::string>{"a card is in the slot, which has no power"}));
}

// The firmware has filled in its records at the start.
TEST(SlotConflicts, HotPlugExplainsAnOldUsage) {
  MadeMachine machine;
  AddHotPlugPort(machine, "0000:00:02.0", 2, false);
  AddHotPlugPort(machine, "0000:00:03.0", 3, true);
  machine.Card("0000:03:00.0");
  machine.Record("Removed", "0000:00:02.0").usage = 4;
  machine.Record("Added", "0000:00:03.0").usage = 3;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNamed("Removed").state, SlotState::kEmpty);
  EXPECT_EQ(resolved.SlotNamed("Removed").conflicts,
            (std::vector<std::string>{"the firmware says in use, and the slot reports no card: the "
                                      "card was removed since the start, or is not seated well"}));
  EXPECT_EQ(resolved.SlotNamed("Added").conflicts,
            (std::vector<std::string>{"the firmware says available, and 0000:03:00.0 answers: the "
                                      "card may have been added since the start"}));
}

// Where ACPI does the hot-plug, the register of the port does not change.
TEST(SlotConflicts, TheDriverOfTheSlotKnowsBetterThanThePort) {
  MadeMachine machine;
  AddHotPlugPort(machine, "0000:00:02.0", 2, false);
  AddHotPlugPort(machine, "0000:00:03.0", 3, false);
  machine.Card("0000:02:00.0");
  machine.KernelSlotAt("2", "0000:02:00");
  machine.KernelSlotAt("3", "0000:03:00");
  for (KernelSlot& slot : machine.Get().kernelSlots) slot.adapter = 1;
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.SlotNamed("2").conflicts.empty());
  EXPECT_EQ(resolved.SlotNamed("3").conflicts,
            (std::vector<std::string>{"kernel slot 3 reports a card, and no function answers"}));
  EXPECT_EQ(resolved.SlotNamed("3").state, SlotState::kUnknown);
}

TEST(SlotConflicts, APortIsNotAskedWhereADriverContradictsAnother) {
  MadeMachine machine;
  AddHotPlugPort(machine, "0000:00:02.0", 2, false);
  AddHotPlugPort(machine, "0000:00:03.0", 3, false);
  machine.Card("0000:02:00.0");
  machine.Card("0000:03:00.0");
  EXPECT_EQ(
      Resolved(machine).SlotNamed("Port 0000:00:03.0").conflicts,
      (std::vector<std::string>{"port 0000:00:03.0 reports no card, and 0000:03:00.0 answers"}));
  machine.KernelSlotAt("2", "0000:02:00");
  machine.Get().kernelSlots[0].adapter = 1;
  EXPECT_TRUE(Resolved(machine).SlotNamed("Port 0000:00:03.0").conflicts.empty());
}

TEST(SlotConflicts, AnActiveLinkWeighsMoreThanAReportOfNoCard) {
  MadeMachine machine;
  AddHotPlugPort(machine, "0000:00:02.0", 2, false);
  machine.Get().functions.front().config.express->linkActive = true;
  EXPECT_EQ(Resolved(machine).SlotNamed("Port 0000:00:02.0").state, SlotState::kUnknown);
}

TEST(SlotConflicts, AnActiveLinkLeadsToSomething) {
  MadeMachine machine;
  machine.Port("0000:00:02.0", 2, 2).config.express->linkActive = true;
  machine.Record("Slot 2", "0000:00:02.0").usage = 3;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNamed("Slot 2").state, SlotState::kUnknown);
  EXPECT_EQ(resolved.SlotNamed("Slot 2").conflicts,
            (std::vector<std::string>{
                "the link of port 0000:00:02.0 is active, and no function answers"}));
}

TEST(SlotConflicts, PresenceCountsOnHotPlugPortsOnly) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 1);
  machine.Port("0000:00:02.0", 2, 2).config.express->slot->hotPlug = true;
  machine.Record("Fixed", "0000:00:01.0").usage = 3;
  machine.Record("Hot", "0000:00:02.0").usage = 3;
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.SlotNamed("Fixed").conflicts.empty());
  EXPECT_EQ(
      resolved.SlotNamed("Hot").conflicts,
      (std::vector<std::string>{"port 0000:00:02.0 reports a card, and no function answers"}));
}

}  // namespace
}  // namespace topology
