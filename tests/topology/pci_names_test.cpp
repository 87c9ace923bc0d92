// SPDX-License-Identifier: Apache-2.0
#include "topology/pci_names.h"

#include <gtest/gtest.h>

namespace topology {
namespace {

constexpr const char* kText =
    "# a comment\n"
    "\n"
    "8086  Intel Corporation\n"
    "\t1533  I210 Gigabit Network Connection\n"
    "# between a device and its cards\n"
    "\t\t103c 0003  Ethernet I210-T1 GbE NIC\n"
    "# between devices\n"
    "\t1572  Ethernet Controller X710\n"
    "\t\t1590 0000  Converged Adapter\n"
    "10de  NVIDIA Corporation\n"
    "\t1572  Of another vendor\n"
    "C 02  Network controller\n"
    "\t00  Ethernet controller\n"
    "C 0c  Serial bus controller\n"
    "\t03  USB controller\n"
    "\t\t30  XHCI";

TEST(PciNames, AreFoundByVendorAndDevice) {
  const PciNames names(kText);
  EXPECT_EQ(names.Vendor(0x8086), "Intel Corporation");
  EXPECT_EQ(names.Device(0x8086, 0x1533), "I210 Gigabit Network Connection");
  EXPECT_EQ(names.Device(0x8086, 0x1572), "Ethernet Controller X710");
  EXPECT_EQ(names.Device(0x10DE, 0x1572), "Of another vendor");
}

TEST(PciNames, OfSubsystemsStandBelowTheirDevice) {
  const PciNames names(kText);
  EXPECT_EQ(names.Subsystem(0x8086, 0x1533, 0x103C, 3), "Ethernet I210-T1 GbE NIC");
  EXPECT_EQ(names.Subsystem(0x8086, 0x1533, 0x1590, 0), "");
  EXPECT_EQ(names.Subsystem(0x8086, 0x1572, 0x1590, 0), "Converged Adapter");
  EXPECT_EQ(names.Subsystem(0x8086, 0x1533, 0x8086, 0x1533), "I210 Gigabit Network Connection");
  EXPECT_EQ(names.Subsystem(0x8086, 0x1533, 0x8086, 0x1572), "");
}

TEST(PciNames, OfClassesFallBackToTheBaseClass) {
  const PciNames names(kText);
  EXPECT_EQ(names.Class(0x020000), "Ethernet controller");
  EXPECT_EQ(names.Class(0x028000), "Network controller");
  EXPECT_EQ(names.ProgrammingInterface(0x0C0330), "XHCI");
  EXPECT_EQ(names.ProgrammingInterface(0x0C0300), "");
  EXPECT_EQ(names.Class(0x110000), "");
}

TEST(PciNames, ThatAreMissingAreEmpty) {
  for (const char* text : {"", "\n\n", "808", "8086", "zzzz  Nobody\n", "\t1533  Nobody's\n"}) {
    const PciNames names{std::string(text)};
    EXPECT_EQ(names.Vendor(0x8086), "") << text;
    EXPECT_EQ(names.Device(0x8086, 0x1533), "") << text;
    EXPECT_EQ(names.Subsystem(0x8086, 0x1533, 1, 2), "") << text;
    EXPECT_EQ(names.Class(0x020000), "") << text;
  }
}

}  // namespace
}  // namespace topology
