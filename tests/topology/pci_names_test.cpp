// SPDX-License-Identifier: Apache-2.0
#include "topology/pci_names.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

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

TEST(PciNames, AreFoundInAnyOrderOfLines) {
  const PciNames names(
      "8086  Intel Corporation\n"
      "\t1572  Ethernet Controller X710\n"
      "\t1533  I210 Gigabit Network Connection\n"
      "\t\t103c 0003  Ethernet I210-T1 GbE NIC\n"
      "\t0001  Early\n"
      "\n"
      "\t1600  Of nobody\n"
      "C 02  Network controller\n"
      "1002  AMD\n"
      "\t1600  Of AMD\n"
      "1002  Again\n");
  EXPECT_EQ(names.Vendor(0x8086), "Intel Corporation");
  EXPECT_EQ(names.Vendor(0x1002), "AMD");
  EXPECT_EQ(names.Device(0x1002, 0x1600), "Of AMD");
  EXPECT_EQ(names.Device(0x8086, 0x1600), "");
  EXPECT_EQ(names.Device(0x8086, 0x0001), "Early");
  EXPECT_EQ(names.Device(0x8086, 0x1533), "I210 Gigabit Network Connection");
  EXPECT_EQ(names.Device(0x8086, 0x1572), "Ethernet Controller X710");
  EXPECT_EQ(names.Subsystem(0x8086, 0x1533, 0x103C, 3), "Ethernet I210-T1 GbE NIC");
  EXPECT_EQ(names.Class(0x020000), "Network controller");
}

TEST(PciNames, OfManyDevicesAreFound) {
  std::string text = "8086  Intel Corporation\n";
  for (unsigned device = 0x1000; device < 0x1400; device += 2) {
    std::array<char, 64> lines{};
    std::snprintf(lines.data(), lines.size(), "\t%04x  Device %x\n\t\t103c %04x  Card %x\n", device,
                  device, device, device);
    text += lines.data();
  }
  const PciNames names(text + "8087  Next\n");
  for (unsigned device = 0xFFE; device < 0x1402; ++device) {
    const auto id = static_cast<std::uint16_t>(device);
    const bool isThere = device >= 0x1000 && device < 0x1400 && device % 2 == 0;
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "Device %x", device);
    EXPECT_EQ(names.Device(0x8086, id), isThere ? name.data() : "");
  }
  EXPECT_EQ(names.Vendor(0x8087), "Next");
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
