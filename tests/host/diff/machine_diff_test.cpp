// SPDX-License-Identifier: Apache-2.0
#include "host/diff/machine_diff.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/diff/made_machine.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

MachineDiff DiffOf(const MadeMachine& before, const MadeMachine& after,
                   const DiffScope& scope = {}) {
  return CompareMachines(before.State(), after.State(), scope);
}

/// "SUBJECT ADDRESSES-OR-SLOTS: CHANGE" for each change.
std::vector<std::string> ChangesOf(const MachineDiff& diff) {
  std::vector<std::string> texts;
  for (const ObjectChange& change : diff.changes) {
    std::string names = change.subject;
    for (const DomainAddress& address : change.functions) {
      names += ' ' + FormatAddress(address.address);
    }
    for (const std::string& slot : change.slots) names += ' ' + slot;
    for (const FactChange& fact : change.facts) texts.push_back(names + ": " + fact.text);
  }
  return texts;
}

std::vector<std::string> Differences(const MadeMachine& before, const MadeMachine& after,
                                     const DiffScope& scope = {}) {
  return ChangesOf(DiffOf(before, after, scope));
}

std::vector<std::string> Unknown(const MachineDiff& diff) {
  std::vector<std::string> texts;
  for (const NotCompared& row : diff.notCompared) {
    texts.push_back((row.unknownIn == DiffSideName::kBefore ? "A: " : "B: ") + row.text);
  }
  return texts;
}

/// Two root ports with slots; a network card of two functions sits in slot A.
MadeMachine Server() {
  MadeMachine machine;
  machine.RootPort("0000:00:01.0", 1).RootPort("0000:00:02.0", 2);
  machine.Slot("A", 1, {"0000:00:01.0"}, "occupied").Slot("B", 2, {"0000:00:02.0"}, "empty");
  machine.Card("0000:01:00.0", 0x1521, "0000:00:01.0").Put("0000:01:00.0", "A");
  machine.Card("0000:01:00.1", 0x1521, "0000:00:01.0").Put("0000:01:00.1", "A");
  return machine;
}

TEST(MachineDiff, AMachineDoesNotDifferFromItself) {
  const MachineDiff diff = DiffOf(Server(), Server(), {.all = true, .ignored = {}});
  EXPECT_THAT(diff.changes, IsEmpty());
  EXPECT_THAT(diff.notCompared, IsEmpty());
}

TEST(MachineDiff, BiosAndBoardAreCompared) {
  MadeMachine before, after;
  before.identity->biosVersion = "1.2";
  after.identity->biosVersion = "1.3";
  before.identity->boardProduct = "X1";
  after.identity->boardProduct = "To Be Filled By O.E.M.";
  const MachineDiff diff = DiffOf(before, after);
  EXPECT_THAT(ChangesOf(diff), ElementsAre("machine: BIOS version 1.2 -> 1.3"));
  EXPECT_THAT(Unknown(diff), ElementsAre("B: board"));
  EXPECT_THAT(Differences(before, after, {.all = false, .ignored = {"BiosVersion"}}), IsEmpty());
  after.identity.reset();
  EXPECT_THAT(Unknown(DiffOf(before, after)), ElementsAre("B: machine, board and BIOS"));
}

TEST(MachineDiff, ACardThatMovedIsToldOnce) {
  MadeMachine after;
  after.RootPort("0000:00:01.0", 1).RootPort("0000:00:02.0", 2);
  after.Slot("A", 1, {"0000:00:01.0"}, "empty").Slot("B", 2, {"0000:00:02.0"}, "occupied");
  after.Card("0000:02:00.0", 0x1521, "0000:00:02.0").Put("0000:02:00.0", "B");
  after.Card("0000:02:00.1", 0x1521, "0000:00:02.0").Put("0000:02:00.1", "B");
  const MachineDiff diff = DiffOf(Server(), after);
  EXPECT_THAT(ChangesOf(diff), ElementsAre("function 02:00.0 02:00.1: moved from A to B"));
  EXPECT_EQ(diff.changes[0].formerFunctions.size(), 2U);
  EXPECT_THAT(diff.notCompared, IsEmpty());
}

TEST(MachineDiff, ACardThatIsAddedOrRemovedIsOneChange) {
  MadeMachine without;
  without.RootPort("0000:00:01.0", 1).RootPort("0000:00:02.0", 2);
  without.Slot("A", 1, {"0000:00:01.0"}, "empty").Slot("B", 2, {"0000:00:02.0"}, "empty");
  EXPECT_THAT(Differences(without, Server()), ElementsAre("function 01:00.0 01:00.1: added in A"));
  EXPECT_THAT(Differences(Server(), without),
              ElementsAre("function 01:00.0 01:00.1: removed, was in A"));
}

TEST(MachineDiff, WhatIsBehindACardComesAndGoesWithIt) {
  const auto withSwitch = [](MadeMachine machine) {
    const Properties bridge = {{"HeaderType", ByteValue(1)}};
    machine.Card("0000:02:00.0", 0x8747, "0000:00:02.0", bridge).Put("0000:02:00.0", "B");
    machine.Card("0000:03:08.0", 0x8747, "0000:02:00.0", bridge).Put("0000:03:08.0", "B");
    machine.Card("0000:04:00.0", 0x2231, "0000:03:08.0").Put("0000:04:00.0", "B");
    return machine;
  };
  const MachineDiff diff = DiffOf(Server(), withSwitch(Server()));
  EXPECT_THAT(ChangesOf(diff), ElementsAre("function 02:00.0 03:08.0 04:00.0: added in B"));
}

TEST(MachineDiff, AllThatLeavesASlotIsOneChange) {
  MadeMachine before = Server();
  before.Card("0000:02:00.0", 0x2231, "0000:00:02.0").Put("0000:02:00.0", "B");
  before.Card("0000:02:08.0", 0x2232, "0000:00:02.0").Put("0000:02:08.0", "B");
  EXPECT_THAT(Differences(before, Server()),
              ElementsAre("function 02:00.0 02:08.0: removed, was in B"));
}

TEST(MachineDiff, VirtualFunctionsAreCounted) {
  MadeMachine after = Server();
  for (const char* address : {"0000:01:10.0", "0000:01:10.2"}) {
    after.Card(address, 0x1520, "0000:00:01.0", {{"PhysicalFunction", TCIMValue("0000:01:00.0")}});
  }
  EXPECT_THAT(Differences(Server(), after),
              ElementsAre("function 01:10.0 01:10.2: added: 2 virtual functions of 01:00.0"));
}

TEST(MachineDiff, RenumberedBusesAreToldOnceForEachBus) {
  MadeMachine before, after;
  for (auto& [machine, shift] : {std::pair(&before, 0), std::pair(&after, 1)}) {
    for (int port = 1; port <= 3; ++port) {
      const std::string root = "0000:00:0" + std::to_string(port) + ".0";
      const std::string bus = "0000:0" + std::to_string(port + shift);
      machine->RootPort(root, static_cast<unsigned>(port + shift));
      machine->Card(bus + ":00.0", 0x1521, root).Card(bus + ":00.1", 0x1521, root);
    }
  }
  EXPECT_THAT(Differences(before, after),
              ElementsAre("buses: bus 0000:01 is now 0000:02 (2 functions)",
                          "buses: bus 0000:02 is now 0000:03 (2 functions)",
                          "buses: bus 0000:03 is now 0000:04 (2 functions)"));
  EXPECT_THAT(Differences(before, after, {.all = false, .ignored = {"Bus"}}), IsEmpty());
}

TEST(MachineDiff, AnotherCardInTheSlotIsAReplacement) {
  MadeMachine before = Server(), after = Server();
  before.Card("0000:02:00.0", 0xA, "0000:00:02.0", {{"Revision", ByteValue(1)}});
  after.Card("0000:02:00.0", 0xB, "0000:00:02.0", {{"Revision", ByteValue(2)}});
  const auto texts = Differences(before, after);
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_THAT(texts[0], HasSubstr("function 02:00.0: replaced: "));
  EXPECT_THAT(texts[0], HasSubstr("[8086:000a] -> "));
}

TEST(MachineDiff, AnotherSerialNumberIsAnotherCardOfTheModel) {
  const auto serial = [](const char* text) {
    return Properties{{"SerialNumber", TCIMValue(text)}};
  };
  MadeMachine before = Server(), after = Server();
  before.Details("0000:01:00.0", serial("1"));
  after.Details("0000:01:00.0", serial("2"));
  EXPECT_THAT(Differences(before, after),
              ElementsAre("function 01:00.0: replaced by another of the same model: "
                          "serial number 1 -> 2"));
}

TEST(MachineDiff, SerialNumbersTellThatEqualCardsWereSwapped) {
  const auto make = [](const char* inA, const char* inB) {
    MadeMachine machine = Server();
    machine.Card("0000:02:00.0", 0x1521, "0000:00:02.0").Put("0000:02:00.0", "B");
    machine.Details("0000:01:00.0", {{"SerialNumber", TCIMValue(inA)}});
    machine.Details("0000:02:00.0", {{"SerialNumber", TCIMValue(inB)}});
    return machine;
  };
  EXPECT_THAT(Differences(make("1", "2"), make("2", "1")),
              UnorderedElementsAre("function 01:00.0: moved from B to A",
                                   "function 02:00.0: moved from A to B"));
  EXPECT_THAT(Differences(make("1", "1"), make("1", "1")), IsEmpty());
}

TEST(MachineDiff, ASerialNumberThatOneSideLacksDoesNotPartACard) {
  MadeMachine before = Server(), after = Server();
  after.Details("0000:01:00.0", {{"SerialNumber", TCIMValue("1")}});
  before.Details("0000:01:00.0", {{"ExtendedUnknownBecause", TCIMValue("only root may read it")}});
  const MachineDiff diff = DiffOf(before, after);
  EXPECT_THAT(diff.changes, IsEmpty());
  ASSERT_THAT(Unknown(diff), ElementsAre("A: serial number of 1 function"));
  EXPECT_EQ(diff.notCompared[0].because, "only root may read it");
}

TEST(MachineDiff, ASlotThatWasUnknownIsNoMove) {
  MadeMachine before;
  before.RootPort("0000:00:01.0", 1).Card("0000:01:00.0", 0x1521, "0000:00:01.0");
  MadeMachine after;
  after.RootPort("0000:00:01.0", 1).Card("0000:01:00.0", 0x1521, "0000:00:01.0");
  after.Slot("A", 1, {"0000:00:01.0"}, "occupied").Put("0000:01:00.0", "A");
  const MachineDiff diff = DiffOf(before, after);
  EXPECT_THAT(diff.changes, IsEmpty());
  EXPECT_THAT(Unknown(diff),
              UnorderedElementsAre("A: 1 slot (SMBIOS record)", "A: slot of 1 function"));
}

TEST(MachineDiff, AnotherNameForThePlaceIsNoMove) {
  const auto make = [](const char* slot) {
    MadeMachine machine;
    machine.RootPort("0000:00:01.0", 1).Card("0000:01:00.0", 0x1521, "0000:00:01.0");
    machine.Slot("A", 1, {}).Slot("B", 2, {}).Put("0000:01:00.0", slot);
    return machine;
  };
  EXPECT_THAT(Differences(make("A"), make("B")),
              ElementsAre("function 01:00.0: in B, was in A, although the port is the same"));
}

TEST(MachineDiff, ACardOutsideNamedSlotsIsBehindAnotherPort) {
  const auto make = [](const char* address, const char* port) {
    MadeMachine machine;
    machine.RootPort("0000:00:01.0", 1).RootPort("0000:00:02.0", 2);
    machine.Card(address, 0x1521, port);
    return machine;
  };
  EXPECT_THAT(
      Differences(make("0000:01:00.0", "0000:00:01.0"), make("0000:02:00.0", "0000:00:02.0")),
      ElementsAre("function 02:00.0: behind port 00:02.0, was behind port 00:01.0"));
}

TEST(MachineDiff, LinksAreComparedButForTheSpeedNow) {
  const auto make = [](unsigned width, const char* speed, const char* most) {
    MadeMachine machine = Server();
    machine.Card("0000:02:00.0", 0x2231, "0000:00:02.0",
                 {{"LinkWidth", ByteValue(width)},
                  {"MaxLinkWidth", ByteValue(16)},
                  {"LinkSpeed", TCIMValue(speed)},
                  {"MaxLinkSpeed", TCIMValue(most)}});
    return machine;
  };
  const MadeMachine before = make(16, "16.0 GT/s", "16.0 GT/s");
  EXPECT_THAT(Differences(before, make(8, "2.5 GT/s", "8.0 GT/s")),
              ElementsAre("function 02:00.0: maximum link speed 16.0 GT/s -> 8.0 GT/s",
                          "function 02:00.0: link narrower: x16 -> x8"));
  const MadeMachine idle = make(16, "2.5 GT/s", "16.0 GT/s");
  EXPECT_THAT(Differences(before, idle), IsEmpty());
  EXPECT_THAT(Differences(before, idle, {.all = true, .ignored = {}}),
              ElementsAre(HasSubstr("LinkSpeed: \"16.0 GT/s\" -> \"2.5 GT/s\"")));
}

TEST(MachineDiff, OneCauseOnManyFunctionsIsOneChange) {
  const auto make = [](const char* driver) {
    MadeMachine machine;
    machine.RootPort("0000:00:01.0", 1);
    for (int i = 0; i < 8; ++i) {
      machine.Card("0000:01:00." + std::to_string(i), 0x1572, "0000:00:01.0",
                   {{"Driver", TCIMValue(driver)}});
    }
    return machine;
  };
  const MachineDiff diff = DiffOf(make("i40e"), make("vfio-pci"));
  ASSERT_EQ(diff.changes.size(), 1U);
  EXPECT_EQ(diff.changes[0].functions.size(), 8U);
  EXPECT_EQ(diff.changes[0].facts[0].text, "driver i40e -> vfio-pci");
}

TEST(MachineDiff, AFunctionWithoutDriverHasNoneWhereOthersHave) {
  const auto make = [](const Properties& first, const Properties& second) {
    MadeMachine machine;
    machine.Function("0000:00:01.0", 1, first).Function("0000:00:02.0", 2, second);
    return machine;
  };
  const Properties driver = {{"Driver", TCIMValue("ahci")}};
  EXPECT_THAT(Differences(make(driver, driver), make(driver, {})),
              ElementsAre("function 00:02.0: driver ahci -> (none)"));
  const MachineDiff unknown = DiffOf(make(driver, driver), make({}, {}));
  EXPECT_THAT(unknown.changes, IsEmpty());
  EXPECT_THAT(Unknown(unknown), ElementsAre("B: driver of 2 functions"));
}

TEST(MachineDiff, FirmwareAndSubsystemAreCompared) {
  const auto make = [](const char* firmware, unsigned subsystem) {
    MadeMachine machine;
    machine.Function(
        "0000:00:01.0", 1,
        {{"SubsystemVendorID", WordValue(0x8086)}, {"SubsystemID", WordValue(subsystem)}});
    machine.Details("0000:00:01.0", {{"NvmeFirmwareRevisions", TextsValueOf({firmware})}});
    return machine;
  };
  EXPECT_THAT(Differences(make("1.0", 7), make("1.1", 7)),
              ElementsAre("function 00:01.0: firmware 1.0 -> 1.1"));
  EXPECT_THAT(Differences(make("1.0", 7), make("1.0", 8)),
              ElementsAre("function 00:01.0: subsystem 8086:0007 -> 8086:0008"));
}

TEST(MachineDiff, SlotsAreAddedRenamedAndEmptied) {
  MadeMachine before, after;
  for (MadeMachine* machine : {&before, &after}) machine->RootPort("0000:00:01.0", 1);
  before.Slot("A", 1, {"0000:00:01.0"}, "occupied").Slot("C", 3, {});
  after.Slot("Slot A", 1, {"0000:00:01.0"}, "empty").Slot("D", 4, {}).Slot("E", 5, {});
  EXPECT_THAT(Differences(before, after),
              ElementsAre("slot C: removed", "slot D E: added", "slot Slot A: renamed, was A",
                          "slot Slot A: state in use -> empty"));
}

TEST(MachineDiff, SavedSlotsAloneDoNotTellOfFunctions) {
  MadeMachine slots;
  slots.Slot("A", 1, {"0000:00:01.0"}, "occupied").Slot("B", 2, {"0000:00:02.0"}, "empty");
  EXPECT_EQ(DiffOf(slots, Server()).changes.size(), 2U);
  slots.identity.reset();
  const MachineDiff diff = DiffOf(slots, Server());
  EXPECT_THAT(diff.changes, IsEmpty());
  EXPECT_THAT(Unknown(diff), ElementsAre("A: 4 functions", "A: machine, board and BIOS"));
}

TEST(MachineDiff, RegionsAndInterruptsAreComparedOnRequest) {
  MadeMachine before = Server(), after = Server();
  before.Details("0000:01:00.0", {{"InterruptNumber", TCIMValue(std::uint32_t{16})}});
  after.Details("0000:01:00.0", {{"InterruptNumber", TCIMValue(std::uint32_t{17})}});
  EXPECT_THAT(Differences(before, after), IsEmpty());
  EXPECT_THAT(Differences(before, after, {.all = true, .ignored = {}}),
              ElementsAre("function 01:00.0: InterruptNumber: 16 -> 17"));
  EXPECT_THAT(Differences(before, after, {.all = true, .ignored = {"InterruptNumber"}}), IsEmpty());
}

TEST(MachineDiff, ParentsThatNameEachOtherAreEndured) {
  MadeMachine machine;
  machine.Card("0000:01:00.0", 1, "0000:02:00.0").Card("0000:02:00.0", 1, "0000:01:00.0");
  EXPECT_THAT(Differences(machine, machine), IsEmpty());
  EXPECT_EQ(Differences(MadeMachine(), machine).size(), 2U);
}

}  // namespace
}  // namespace pciinfo
