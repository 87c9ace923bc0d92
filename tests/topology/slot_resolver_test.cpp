// SPDX-License-Identifier: Apache-2.0
#include "topology/slot_resolver.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "tests/topology/made_machine.h"

namespace topology {
namespace {

using Names = std::set<std::string>;

/// The resolution of a machine, with texts in the place of numbers.
class Resolved {
 public:
  explicit Resolved(MadeMachine& machine)
      : machine_(machine.Get()), tree_(machine_.functions), all_(ResolveSlots(machine_, tree_)) {}

  const Slot& SlotNamed(const std::string& name) const {
    for (const Slot& slot : all_.slots) {
      if (slot.name == name) return slot;
    }
    throw std::runtime_error("no slot " + name);
  }
  /// The addresses of the functions in a slot.
  Names In(const std::string& name) const {
    Names functions;
    for (const Occupant& occupant : all_.occupants) {
      if (all_.slots[occupant.slot].name == name) functions.insert(NameOf(occupant.function));
    }
    return functions;
  }
  Certainty CertaintyOf(const std::string& function) const {
    return OccupantAt(function).certainty;
  }
  std::string EvidenceOf(const std::string& function) const {
    return OccupantAt(function).evidence;
  }
  Place PlaceOf(const std::string& function) const {
    return all_.places[tree_.Find(At(function)).value()].place;
  }
  std::string ReasonOf(const std::string& function) const {
    return all_.places[tree_.Find(At(function)).value()].reason;
  }
  Names SlotNames() const {
    Names names;
    for (const Slot& slot : all_.slots) names.insert(slot.name);
    return names;
  }
  Names SharedFunctions() const {
    Names functions;
    for (const SharedPlace& shared : all_.shared) {
      for (const std::size_t function : shared.functions) functions.insert(NameOf(function));
    }
    return functions;
  }
  const Resolution& All() const { return all_; }

 private:
  std::string NameOf(std::size_t function) const { return ToText(tree_.At(function).address); }
  const Occupant& OccupantAt(const std::string& function) const {
    for (const Occupant& occupant : all_.occupants) {
      if (NameOf(occupant.function) == function) return occupant;
    }
    throw std::runtime_error(function + " is in no slot");
  }

  const Machine& machine_;
  BusTree tree_;
  Resolution all_;
};

/// A root port to one card with two functions.
void AddCardBehindPort(MadeMachine& machine, const std::string& port = "0000:00:01.1",
                       unsigned bus = 1, int physicalNumber = 0) {
  machine.Port(port, bus, bus, physicalNumber);
  char card[32];
  std::snprintf(card, sizeof card, "0000:%02x:00.0", bus);
  machine.Card(card);
  card[11] = '1';
  machine.Card(card);
}

const Names kCard{"0000:01:00.0", "0000:01:00.1"};

struct NamedAddress {
  const char* what;
  const char* address;
};

// What firmware writes into the record of a slot whose card is at 01:00.0 behind port 00:01.1.
class NamedAddressTest : public testing::TestWithParam<NamedAddress> {};

TEST_P(NamedAddressTest, MeansTheCardBehindThePort) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Record("Slot 1", GetParam().address);
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 1"), kCard);
  EXPECT_EQ(resolved.CertaintyOf("0000:01:00.1"), Certainty::kCertain);
  EXPECT_EQ(resolved.SlotNamed("Slot 1").state, SlotState::kOccupied);
  EXPECT_NE(resolved.EvidenceOf("0000:01:00.0").find("SMBIOS record 0x0900 names "),
            std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Firmware, NamedAddressTest,
    testing::Values(NamedAddress{"Port", "0000:00:01.1"}, NamedAddress{"Card", "0000:01:00.0"},
                    NamedAddress{"SecondFunction", "0000:01:00.1"},
                    NamedAddress{"MissingFunction", "0000:01:00.4"},
                    NamedAddress{"DeviceThatTheLinkCannotHold", "0000:01:01.0"}),
    [](const auto& test) { return test.param.what; });

TEST(SlotResolver, EvidenceNamesSourceValueAndConclusion) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Record("Slot 1", "0000:00:01.1");
  EXPECT_EQ(Resolved(machine).EvidenceOf("0000:01:00.1"),
            "SMBIOS record 0x0900 names port 0000:00:01.1; 0000:01:00.1 is behind it");
}

TEST(SlotResolver, APortWithNothingBehindItIsAnEmptySlot) {
  MadeMachine machine;
  machine.Port("0000:00:01.1", 1, 1);
  machine.Record("Slot 1", "0000:01:00.0").usage = 3;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNamed("Slot 1").state, SlotState::kEmpty);
  EXPECT_TRUE(resolved.SlotNamed("Slot 1").conflicts.empty());
}

TEST(SlotResolver, TheSwitchOfACardIsInTheSlotWithAllBehindIt) {
  MadeMachine machine;
  machine.Port("0000:00:02.0", 3, 5, 6);
  machine.Port("0000:03:00.0", 4, 5, -1, PortType::kUpstreamPort);
  machine.Port("0000:04:00.0", 5, 5, -1, PortType::kDownstreamPort);
  machine.Card("0000:05:00.0", 0x0300);
  machine.Record("Slot 6", "0000:03:00.4");
  EXPECT_EQ(Resolved(machine).In("Slot 6"),
            (Names{"0000:03:00.0", "0000:04:00.0", "0000:05:00.0"}));
}

TEST(SlotResolver, AtTheEndOfALinkStandsACardWhateverTypeItClaims) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 2);
  machine.Port("0000:01:00.0", 2, 2, 1, PortType::kRootPort);
  machine.Card("0000:02:00.0");
  machine.Record("Slot 1", "0000:01:00.0");
  EXPECT_EQ(Resolved(machine).In("Slot 1"), (Names{"0000:01:00.0", "0000:02:00.0"}));
}

/// A switch of the board below port 64:00.0, with a card behind each of its two ports.
void AddBoardSwitch(MadeMachine& machine, int firstNumber, int secondNumber) {
  machine.Port("0000:64:00.0", 0x65, 0x68, 6);
  machine.Port("0000:65:00.0", 0x66, 0x68, -1, PortType::kUpstreamPort);
  machine.Port("0000:66:08.0", 0x67, 0x67, firstNumber, PortType::kDownstreamPort);
  machine.Port("0000:66:10.0", 0x68, 0x68, secondNumber, PortType::kDownstreamPort);
  machine.Card("0000:67:00.0", 0x0300);
  machine.Card("0000:68:00.0", 0x0300);
}

TEST(SlotResolver, RecordsThatNameTheSwitchPortsOfTheBoardMeanThose) {
  MadeMachine machine;
  AddBoardSwitch(machine, 8, 16);
  machine.Record("A", "0000:66:08.0");
  machine.Record("B", "0000:66:10.0");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("A"), (Names{"0000:67:00.0"}));
  EXPECT_EQ(resolved.In("B"), (Names{"0000:68:00.0"}));
}

TEST(SlotResolver, SlotsWithOnePortShareTheCardsBehindItsSwitch) {
  MadeMachine machine;
  AddBoardSwitch(machine, 8, 16);
  for (const char* name : {"A", "B", "C"}) machine.Record(name, "0000:64:00.0", 1);
  const Resolved resolved(machine);
  ASSERT_EQ(resolved.All().shared.size(), 1U);
  EXPECT_EQ(resolved.All().shared[0].slots.size(), 3U);
  EXPECT_EQ(resolved.SharedFunctions(), (Names{"0000:67:00.0", "0000:68:00.0"}));
  EXPECT_TRUE(resolved.In("A").empty());
  EXPECT_EQ(resolved.PlaceOf("0000:67:00.0"), Place::kShared);
  EXPECT_NE(resolved.PlaceOf("0000:65:00.0"), Place::kShared) << "the switch is soldered";
  EXPECT_EQ(resolved.SlotNamed("B").state, SlotState::kUnknown);
}

TEST(SlotResolver, SlotsWithOnePortAreToldApartByNumbersThatMatchAllOfThem) {
  MadeMachine machine;
  AddBoardSwitch(machine, 8, 16);
  machine.Record("A", "0000:64:00.0", 16);
  machine.Record("B", "0000:64:00.0", 8);
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("A"), (Names{"0000:68:00.0"}));
  EXPECT_EQ(resolved.In("B"), (Names{"0000:67:00.0"}));
  EXPECT_EQ(resolved.CertaintyOf("0000:67:00.0"), Certainty::kLikely);
  EXPECT_EQ(resolved.EvidenceOf("0000:67:00.0"),
            "SMBIOS record 0x0901 has the slot ID 8, the physical slot number of port "
            "0000:66:08.0; 0000:67:00.0 is behind it");
}

TEST(SlotResolver, ANumberThatMatchesOneOfThemIsNotEnough) {
  MadeMachine machine;
  AddBoardSwitch(machine, 8, 16);
  machine.Record("A", "0000:64:00.0", 8);
  machine.Record("B", "0000:64:00.0", 9);
  EXPECT_EQ(Resolved(machine).SharedFunctions(), (Names{"0000:67:00.0", "0000:68:00.0"}));
}

TEST(SlotResolver, TheInnerSlotWinsAndRemembersTheOuterOne) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 4);
  machine.Port("0000:01:00.0", 2, 4, -1, PortType::kUpstreamPort);
  machine.Port("0000:02:00.0", 3, 3, 1, PortType::kDownstreamPort);
  machine.Port("0000:02:01.0", 4, 4, 2, PortType::kDownstreamPort);
  machine.Card("0000:03:00.0");
  machine.Record("Riser", "0000:00:01.0");
  machine.Record("Riser slot 1", "0000:02:00.0");
  machine.Record("Riser slot 2", "0000:02:01.0").usage = 3;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Riser slot 1"), (Names{"0000:03:00.0"}));
  EXPECT_EQ(resolved.In("Riser"), (Names{"0000:01:00.0", "0000:02:00.0", "0000:02:01.0"}));
  const Slot& inner = resolved.SlotNamed("Riser slot 1");
  ASSERT_TRUE(inner.outer);
  EXPECT_EQ(resolved.All().slots[*inner.outer].name, "Riser");
  EXPECT_EQ(resolved.SlotNamed("Riser slot 2").state, SlotState::kEmpty);
}

class PlaceholderTest : public testing::TestWithParam<NamedAddress> {};

TEST_P(PlaceholderTest, MeansNothing) {
  MadeMachine machine;
  machine.Card("0000:00:00.0", 0x0600);
  machine.Card("0000:00:01.0", 0x0600);
  machine.Card("0000:00:1f.0", 0x0601);
  machine.Port("0000:00:1c.0", 2, 2);
  machine.Card("0000:ff:0b.0", 0x1101);
  AddCardBehindPort(machine);
  machine.Record("Slot 1", GetParam().address);
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.In("Slot 1").empty());
  EXPECT_EQ(resolved.SlotNamed("Slot 1").state, SlotState::kUnknown);
  EXPECT_FALSE(resolved.SlotNamed("Slot 1").noTargetBecause.empty());
  EXPECT_EQ(resolved.PlaceOf("0000:01:00.0"), Place::kUnnamedSlot);
}

INSTANTIATE_TEST_SUITE_P(Firmware, PlaceholderTest,
                         testing::Values(NamedAddress{"LastBus", "0000:ff:1f.7"},
                                         NamedAddress{"NoBus", "0000:ee:00.0"},
                                         NamedAddress{"HostBridge", "0000:00:00.0"},
                                         NamedAddress{"TemplateHostBridge", "0000:00:01.0"},
                                         NamedAddress{"ChipsetFunction", "0000:00:1f.7"},
                                         NamedAddress{"HiddenPort", "0000:00:1c.4"},
                                         NamedAddress{"MissingDevice", "0000:00:1e.0"},
                                         NamedAddress{"ProcessorRegister", "0000:ff:0b.0"},
                                         NamedAddress{"NoAddress", ""},
                                         NamedAddress{"AllOnes", "ffff:ff:1f.7"}),
                         [](const auto& test) { return test.param.what; });

TEST(SlotResolver, AnImpossibleSegmentIsTakenAsZeroWhereTheFunctionIs) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Record("Slot 1", "ff00:01:00.0");
  machine.Record("Slot 2", "ff00:05:00.0");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 1"), kCard);
  EXPECT_EQ(resolved.CertaintyOf("0000:01:00.0"), Certainty::kLikely);
  EXPECT_FALSE(resolved.SlotNamed("Slot 2").noTargetBecause.empty());
}

TEST(SlotResolver, ASegmentThatExistsIsBelieved) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Port("0001:00:01.1", 1, 1);
  machine.Record("Slot 1", "0001:01:00.0").usage = 3;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.SlotNamed("Slot 1").state, SlotState::kEmpty);
  EXPECT_TRUE(resolved.In("Slot 1").empty());
}

TEST(SlotResolver, PlaceholdersAreFoundByAPhysicalSlotNumberThatOnePortHas) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.1", 1, 3);
  machine.Record("Slot 3", "0000:ff:1f.7", 3);
  machine.Record("Slot 4", "0000:ff:1f.7", 4);
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 3"), kCard);
  EXPECT_EQ(resolved.CertaintyOf("0000:01:00.0"), Certainty::kLikely);
  EXPECT_TRUE(resolved.SlotNamed("Slot 4").targets.empty());
}

TEST(SlotResolver, ANumberThatTwoPortsHaveTellsNothing) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.1", 1, 3);
  AddCardBehindPort(machine, "0000:00:01.2", 2, 3);
  machine.Record("Slot 3", "0000:ff:1f.7", 3);
  EXPECT_TRUE(Resolved(machine).In("Slot 3").empty());
}

TEST(SlotResolver, ANumberThatTwoRecordsHaveTellsNothing) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.1", 1, 3);
  machine.Record("A", "0000:ff:1f.7", 3);
  machine.Record("B", "0000:ff:1f.7", 3);
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.In("A").empty());
  EXPECT_TRUE(resolved.In("B").empty());
}

TEST(SlotResolver, NumbersThatARecordContradictsAreNotBelieved) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.1", 1, 3);
  AddCardBehindPort(machine, "0000:00:01.2", 2, 7);
  machine.Record("Slot 3", "0000:ff:1f.7", 3);
  machine.Record("Slot 5", "0000:02:00.0", 5);
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.In("Slot 3").empty()) << "slot 5 has port number 7";
  EXPECT_FALSE(resolved.In("Slot 5").empty());
}

TEST(SlotResolver, ANumberOfAPortInsideASlotTellsNothing) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 3);
  machine.Port("0000:01:00.0", 2, 3, -1, PortType::kUpstreamPort);
  machine.Port("0000:02:00.0", 3, 3, 4, PortType::kDownstreamPort);
  machine.Card("0000:03:00.0");
  machine.Record("Slot 1", "0000:00:01.0");
  machine.Record("Slot 4", "0000:ff:1f.7", 4);
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.In("Slot 4").empty()) << "the card has a switch with slots";
  EXPECT_EQ(resolved.In("Slot 1").size(), 3U);
}

TEST(SlotResolver, AConventionalSlotIsNotOnALink) {
  MadeMachine machine;
  machine.Port("0000:00:1c.6", 2, 3, 6);
  machine.Port("0000:02:00.0", 3, 3, -1, PortType::kExpressToPciBridge);
  machine.Record("PCI 6", "0000:ff:1f.7", 6).type = 0x06;
  const Resolved resolved(machine);
  EXPECT_TRUE(resolved.In("PCI 6").empty()) << "the bridge is soldered";
  EXPECT_EQ(resolved.SlotNamed("PCI 6").targets.size(), 1U);
}

TEST(SlotResolver, AcpiNumbersOnThePortOrOnTheCardTell) {
  MadeMachine machine;
  machine.Port("0000:00:01.1", 1, 1).slotUserNumber = 3;
  machine.Card("0000:01:00.0");
  machine.Port("0000:00:01.2", 2, 2);
  machine.Card("0000:02:00.0").slotUserNumber = 4;
  machine.Port("0000:00:01.3", 3, 5);
  machine.Port("0000:03:00.0", 4, 5, -1, PortType::kUpstreamPort);
  machine.Card("0000:04:00.0").slotUserNumber = 5;
  for (const unsigned id : {3U, 4U, 5U}) {
    machine.Record("Slot " + std::to_string(id), "0000:ff:1f.7", id);
  }
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 3"), (Names{"0000:01:00.0"}));
  EXPECT_EQ(resolved.In("Slot 4"), (Names{"0000:02:00.0"}));
  EXPECT_TRUE(resolved.In("Slot 5").empty()) << "its parent is no port";
}

TEST(SlotResolver, KernelSlotsTell) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Record("Slot 12", "0000:ff:1f.7", 12);
  machine.KernelSlotAt("12-1", "0000:01:00");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 12"), kCard);
  EXPECT_EQ(resolved.SlotNamed("Slot 12").kernelSlot, 0U);
  EXPECT_EQ(resolved.SlotNames(), (Names{"Slot 12"}));
}

TEST(SlotResolver, KernelSlotsWithoutARecordAreSlotsOfTheirOwn) {
  MadeMachine machine;
  AddCardBehindPort(machine);
  machine.Port("0000:00:02.0", 2, 2);
  machine.Port("0000:00:02.1", 3, 3);
  machine.KernelSlotAt("5", "0000:01:00");
  machine.KernelSlotAt("6", "0000:00:02");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("5"), kCard);
  EXPECT_EQ(resolved.SlotNamed("5").source, SlotSource::kKernelSlot);
  EXPECT_EQ(resolved.SlotNamed("6").noTargetBecause,
            "kernel slot 6 is a device with several ports");
}

TEST(SlotResolver, OnAConventionalBusASlotIsADeviceAndWhatIsBehindIt) {
  MadeMachine machine;
  machine.Bridge("0000:00:1e.0", 5, 7);
  machine.Card("0000:05:01.0");
  machine.Card("0000:05:01.1");
  machine.Bridge("0000:05:02.0", 6, 6);
  machine.Card("0000:06:04.0");
  machine.Card("0000:05:03.0");
  machine.Record("PCI 1", "0000:05:01.0");
  machine.Record("PCI 2", "0000:05:02.0");
  machine.Record("PCI 4", "0000:05:04.0").usage = 3;
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("PCI 1"), (Names{"0000:05:01.0", "0000:05:01.1"}));
  EXPECT_EQ(resolved.In("PCI 2"), (Names{"0000:05:02.0", "0000:06:04.0"}));
  EXPECT_EQ(resolved.SlotNamed("PCI 4").state, SlotState::kEmpty);
  EXPECT_EQ(resolved.PlaceOf("0000:05:03.0"), Place::kUnknown);
}

TEST(SlotResolver, ARecordOfAConventionalBridgeOnARootBusMeansItsBus) {
  MadeMachine machine;
  machine.Bridge("0000:00:1e.0", 5, 5);
  machine.Card("0000:05:01.0");
  machine.Record("PCI", "0000:00:1e.0");
  EXPECT_EQ(Resolved(machine).In("PCI"), (Names{"0000:05:01.0"}));
}

TEST(SlotResolver, PeersOfABifurcatedSlotBelongToIt) {
  MadeMachine machine;
  AddCardBehindPort(machine, "0000:00:01.1", 1);
  AddCardBehindPort(machine, "0000:00:01.2", 2);
  machine.Record("Slot 1", "0000:01:00.0").peers = {At("0000:02:00.0"), At("0000:01:00.0")};
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("Slot 1").size(), 4U);
  EXPECT_EQ(resolved.SlotNamed("Slot 1").targets.size(), 2U);
}

TEST(SlotResolver, WhatNoSlotHoldsIsOnBoardOnlyWithAReason) {
  MadeMachine machine;
  machine.Card("0000:00:1f.3", 0x0403);
  machine.Port("0000:00:1c.0", 1, 1, -1);
  machine.Card("0000:01:00.0");
  machine.Port("0000:00:1c.1", 2, 2, 9);
  machine.Card("0000:02:00.0");
  machine.Bridge("0000:00:1e.0", 3, 3);
  machine.Card("0000:03:01.0");
  machine.Card("0000:03:02.0");
  machine.Get().onBoardRecords.push_back({0x29, "Onboard LAN", true, At("0000:03:02.0")});
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.PlaceOf("0000:00:1f.3"), Place::kOnBoard);
  EXPECT_EQ(resolved.PlaceOf("0000:01:00.0"), Place::kOnBoard);
  EXPECT_EQ(resolved.ReasonOf("0000:01:00.0"), "port 0000:00:1c.0 says that it leads to no slot");
  EXPECT_EQ(resolved.PlaceOf("0000:02:00.0"), Place::kUnnamedSlot);
  EXPECT_EQ(resolved.In("Port 0000:00:1c.1"), (Names{"0000:02:00.0"}));
  EXPECT_EQ(resolved.PlaceOf("0000:03:01.0"), Place::kUnknown);
  EXPECT_EQ(resolved.PlaceOf("0000:03:02.0"), Place::kOnBoard);
}

TEST(SlotResolver, WithoutSlotRecordsNothingIsCalledOnBoard) {
  MadeMachine machine;
  machine.Card("0000:00:1f.3", 0x0403);
  machine.Get().noRecordsBecause = "the SMBIOS tables can be read by root only";
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.PlaceOf("0000:00:1f.3"), Place::kUnknown);
  EXPECT_EQ(resolved.ReasonOf("0000:00:1f.3"), "the SMBIOS tables can be read by root only");
}

TEST(SlotResolver, WithoutPrivilegesALinkIsConcludedFromWhatIsThere) {
  MadeMachine machine;
  machine.Port("0000:00:01.0", 1, 1).config.capabilitiesKnown = false;
  machine.Card("0000:01:00.0");
  machine.Bridge("0000:00:1e.0", 2, 2).config.capabilitiesKnown = false;
  machine.Card("0000:02:03.0");
  machine.Card("0000:02:04.0");
  for (Function& function : machine.Get().functions) function.config.express.reset();
  machine.Record("PCIe", "0000:01:00.2");
  machine.Record("PCI", "0000:02:03.0");
  const Resolved resolved(machine);
  EXPECT_EQ(resolved.In("PCIe"), (Names{"0000:01:00.0"}));
  EXPECT_EQ(resolved.In("PCI"), (Names{"0000:02:03.0"}));
  EXPECT_EQ(resolved.PlaceOf("0000:02:04.0"), Place::kUnknown);
}

TEST(SlotResolver, UsageThatTheMachineContradictsIsAConflict) {
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

TEST(SlotResolver, PresenceCountsOnHotPlugPortsOnly) {
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

TEST(SlotResolver, EqualNamesGetANumber) {
  MadeMachine machine;
  machine.Record("Slot", "");
  machine.Record("Slot (2)", "");
  machine.Record("Slot", "");
  machine.Record("", "");
  EXPECT_EQ(Resolved(machine).SlotNames(),
            (Names{"Slot", "Slot (2)", "Slot (3)", "SMBIOS record 0x0903"}));
}

TEST(SlotResolver, EveryFunctionIsInAtMostOneSlot) {
  MadeMachine machine;
  AddBoardSwitch(machine, 8, 16);
  AddCardBehindPort(machine);
  machine.Record("A", "0000:00:01.1");
  machine.Record("B", "0000:64:00.0").peers = {At("0000:01:00.0")};
  machine.Record("C", "0000:66:08.0").peers = {At("0000:64:00.0")};
  const Resolved resolved(machine);
  std::set<std::size_t> seen;
  for (const Occupant& occupant : resolved.All().occupants) {
    EXPECT_TRUE(seen.insert(occupant.function).second);
    EXPECT_FALSE(occupant.evidence.empty());
  }
  for (const SharedPlace& shared : resolved.All().shared) {
    for (const std::size_t function : shared.functions) {
      EXPECT_TRUE(seen.insert(function).second);
    }
  }
}

}  // namespace
}  // namespace topology
