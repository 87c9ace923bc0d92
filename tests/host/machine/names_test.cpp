// SPDX-License-Identifier: Apache-2.0
#include "host/machine/names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/machine/cards.h"
#include "host/machine/link_text.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;

MachineFunction Made(unsigned bus, unsigned number, const char* vendor, const char* device,
                     unsigned baseClass, unsigned subclass) {
  MachineFunction function;
  function.address = {0, {bus, 0, number}};
  function.parentPort = DomainAddress{0, {0, bus, 0}};
  function.vendorId = 0x10de;
  function.deviceId = 0x2231;
  function.vendorName = vendor;
  function.deviceName = device;
  function.baseClass = baseClass;
  function.subclass = subclass;
  return function;
}

std::vector<Card> Cards(const std::vector<MachineFunction>& functions) {
  FunctionList list;
  for (const MachineFunction& function : functions) list.push_back(&function);
  return CardsOf(list, false);
}

TEST(Names, OfMakersAreShort) {
  EXPECT_EQ(ShortMaker("Intel Corporation"), "Intel");
  EXPECT_EQ(ShortMaker("Advanced Micro Devices, Inc. [AMD/ATI]"), "AMD/ATI");
  EXPECT_EQ(ShortMaker("Samsung Electronics Co Ltd"), "Samsung");
  EXPECT_EQ(ShortMaker("Broadcom Inc. and subsidiaries"), "Broadcom");
  EXPECT_EQ(ShortMaker("Micro-Star International Co., Ltd."), "Micro-Star");
  EXPECT_EQ(ShortMaker("Systems"), "Systems");
  EXPECT_EQ(ShortMaker(""), "");
}

TEST(Names, OfPlaceholdersAreEmpty) {
  for (const char* text : {"To Be Filled By O.E.M.", "(null string)", "  Default string ", "N/A",
                           "System Product Name", "....", "xxxx", ""}) {
    EXPECT_EQ(NameIn(text), "") << text;
  }
  EXPECT_EQ(NameIn("  PCIe   Slot 3 "), "PCIe Slot 3");
}

TEST(Names, OfVendorsStandOnce) {
  EXPECT_EQ(MakerAndProduct("VMware", "VMware SVGA II"), "VMware SVGA II");
  EXPECT_EQ(MakerAndProduct("Intel", "I210"), "Intel I210");
  EXPECT_EQ(MakerAndProduct("", "I210"), "I210");
}

TEST(Names, TellTheKindOnlyWhereTheModelDoesNot) {
  EXPECT_EQ(ModelText(Made(1, 0, "Matrox Electronics", "MGA G200e", 3, 0)),
            "Matrox MGA G200e (graphics)");
  EXPECT_EQ(ModelText(Made(1, 0, "Intel Corporation", "I210 Gigabit Network Connection", 2, 0)),
            "Intel I210 Gigabit Network Connection");
  EXPECT_EQ(ModelText(Made(1, 0, "NVIDIA Corporation", "", 3, 0)),
            "NVIDIA VGA compatible controller 10de:2231");
  EXPECT_EQ(ModelText(MachineFunction()), "????:????");
}

TEST(Cards, HaveOneTextForTheFunctionsOfADevice) {
  const auto cards = Cards({Made(1, 0, "NVIDIA Corporation", "GeForce GTX 1080", 3, 0),
                            Made(1, 1, "NVIDIA Corporation", "HD Audio", 4, 3)});
  ASSERT_EQ(cards.size(), 1U);
  EXPECT_EQ(cards[0].text, "NVIDIA GeForce GTX 1080 + audio");
  EXPECT_THAT(cards[0].addresses, ElementsAre("01:00.0-1"));
}

TEST(Cards, CountEqualDevices) {
  const char* name = "Gigabit Network Connection";
  const auto cards = Cards({Made(1, 0, "Intel", name, 2, 0), Made(1, 2, "Intel", name, 2, 0),
                            Made(1, 3, "Intel", name, 2, 0), Made(2, 0, "Intel", name, 2, 0)});
  ASSERT_EQ(cards.size(), 1U);
  EXPECT_EQ(cards[0].text, "2 x Intel Gigabit Network Connection");
  EXPECT_THAT(cards[0].addresses, ElementsAre("01:00.0,2-3", "02:00.0"));
}

TEST(Cards, FoldVirtualFunctionsIntoTheirPhysicalOne) {
  MachineFunction virtualOne = Made(1, 2, "Intel", "Virtual Function", 2, 0);
  virtualOne.physicalFunction = DomainAddress{0, {1, 0, 0}};
  const auto cards = Cards({Made(1, 0, "Intel", "Network", 2, 0), virtualOne});
  ASSERT_EQ(cards.size(), 1U);
  EXPECT_EQ(cards[0].text, "Intel Network, 1 virtual function");
  EXPECT_THAT(cards[0].addresses, ElementsAre("01:00.0"));
  // Alone it stands for itself.
  EXPECT_EQ(Cards({virtualOne}).size(), 1U);
}

TEST(Cards, LeaveOutBridgesBesideOtherFunctions) {
  const MachineFunction bridge = Made(1, 0, "PLX", "PEX 8747", 6, 4);
  EXPECT_EQ(Cards({bridge}).size(), 1U);
  const auto cards = Cards({bridge, Made(2, 0, "Intel", "Network", 2, 0)});
  ASSERT_EQ(cards.size(), 1U);
  EXPECT_EQ(cards[0].text, "Intel Network");
}

TEST(Cards, ListAtMostEightAddresses) {
  Card card;
  card.addresses.assign(8, "x");
  EXPECT_EQ(AddressLines(card).size(), 8U);
  card.addresses.assign(20, "x");
  EXPECT_EQ(AddressLines(card).size(), 8U);
  EXPECT_EQ(AddressLines(card).back(), "+ 13 more");
}

TEST(Links, TellWhatTheyDoOfWhatTheyCan) {
  EXPECT_EQ(LinkText({8, "8.0 GT/s", 16, "16.0 GT/s"}), "x8 of x16, 8 of 16 GT/s");
  EXPECT_EQ(LinkText({4, "2.5 GT/s", 4, "2.5 GT/s"}), "x4, 2.5 GT/s");
  EXPECT_EQ(LinkText({{}, "", 4, "8.0 GT/s"}), "up to x4, 8 GT/s");
  EXPECT_EQ(LinkText({}), "");
  EXPECT_EQ(MostLinkText({1, "2.5 GT/s", 4, "16.0 GT/s"}), "x4, 16 GT/s");
}

/// What is told of the link between a port and a card's function.
std::string NarrowLink(const Link& card, const Link& port, unsigned function = 0,
                       const char* portType = "root port") {
  MachineModel machine;
  machine.functions.resize(2);
  machine.functions[0].address = {0, {0, 1, 0}};
  machine.functions[0].portType = portType;
  machine.functions[0].link = port;
  machine.functions[1].address = {0, {1, 0, function}};
  machine.functions[1].parentPort = machine.functions[0].address;
  machine.functions[1].link = card;
  return NarrowLinkText(machine.functions[1], machine);
}

TEST(Links, AreNarrowBelowWhatBothEndsAllow) {
  EXPECT_EQ(NarrowLink({8, "", 16, ""}, {8, "", 16, ""}), "x8 of x16");
  EXPECT_EQ(NarrowLink({8, "", 16, ""}, {8, "", 8, ""}), "");
  EXPECT_EQ(NarrowLink({{}, "", 16, ""}, {8, "", 16, ""}), "");
}

TEST(Links, AreToldOnceAndBelowPortsOnly) {
  EXPECT_EQ(NarrowLink({8, "", 16, ""}, {8, "", 16, ""}, 1), "");
  EXPECT_EQ(NarrowLink({8, "", 16, ""}, {8, "", 16, ""}, 0, "switch upstream port"), "");
}

}  // namespace
}  // namespace pciinfo
