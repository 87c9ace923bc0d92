// SPDX-License-Identifier: Apache-2.0
#include "tests/fakes/slot_record.h"
#include "tests/pci/pci_fixture.h"

namespace {

Lines ReadLines() { return {Entering("PciRead"), Exiting("PciRead")}; }

// The log records of one function's properties; its slot is entry number `match`.
Lines CommonLines(int match) {
  Lines lines{Entering("GetCommonDevProperties"), "3 Entering correlateDeviceAndSlot"};
  lines.insert(lines.end(), static_cast<std::size_t>(match), "3 not match slot");
  lines.insert(lines.end(),
               {"3 Exiting correlateDeviceAndSlot", Entering("GetLspciDeviceDescription"),
                Exiting("GetLspciDeviceDescription"), Exiting("GetCommonDevProperties")});
  return lines;
}

}  // namespace

// A host bridge at 00:00.0 and two functions on bus 3, which is behind slot 2: a network device,
// and one without a configuration file. The listing contains the first two.
class ThreeFunctionMachineTest : public PluginTest {
 protected:
  ThreeFunctionMachineTest() {
    FakeFunction bridge;
    bridge.baseClass = 0x06;
    bridge.deviceId = 0x3C00;
    FakeFunction network;
    network.bus = 3;
    network.irq = "1f";
    network.baseAddresses = {"0000e001", "       0", "f7e0000c", "0", "38000000000c", "0"};
    network.sizes = {"20", "0", "4000", "0", "100000", "0"};
    FakeFunction missing = network;
    missing.function = 1;
    PutFunctions({bridge, network, missing});
    MachineTree::Remove("/proc/bus/pci/03/00.1");
    Fake().commands["lspci"] = [] {
      return std::string("00:00.0 Host bridge: Example\n03:00.0 Ethernet controller: Example\n");
    };
    MachineTree::Write("/sys/bus/pci/devices/0000:03:00.0/config", AsText(Header(network)));
    SlotRecord hostSlot;
    SlotRecord slot;
    slot.bus = 3;
    Fake().smBios.structures = {hostSlot.Bytes(), slot.Bytes()};
  }

  std::size_t Ask(const char* className) {
    return Make<TPciDevInfo>(className).GetCIMInstances().size();
  }
};

TEST_F(ThreeFunctionMachineTest, BothClassesAreServedFromOnePassWithTheseRecords) {
  EXPECT_EQ(Ask(kPciDeviceClass), 1U);
  EXPECT_EQ(
      Fake().log,
      Join({{"3 Entering GetSlotIDRetrievalType",
             "3 Exiting GetSlotIDRetrievalType, current SMBIOS version >= 2.6 and type 9 contains "
             "bus info",
             "3 Entering readPCISlotLocation", "3 Exiting readPCISlotLocation",
             "3 Entering readPCIConfigForSlots", "3 segNum = 0, bus = 3, dev = 0, func = 0",
             "3 /sys/bus/pci/devices/0000:03:00.0/config", "3 Exiting readPCIConfigForSlots",
             Entering("GetPciInfo"), Entering("ScanPciDevices"), Exiting("ScanPciDevices")},
            ReadLines(),
            {Entering("GetCommonDevProperties"), "3 Entering correlateDeviceAndSlot",
             "3 not match slot", "0 Exiting correlateDeviceAndSlot",
             Entering("GetLspciDeviceDescription"), Exiting("GetLspciDeviceDescription"),
             Exiting("GetCommonDevProperties")},
            ReadLines(),
            {Entering("PopulatePciDeviceProperties")},
            CommonLines(0),
            {Exiting("PopulatePciDeviceProperties"), Entering("PciRead"),
             "2 Could not open PCI file./proc/bus/pci/03/00.1", Exiting("GetPciInfo"),
             Generating(kPciDeviceClass)}}));

  Fake().log.clear();
  MachineTree::Clear();
  EXPECT_EQ(Ask(kPciBridgeClass), 1U);
  EXPECT_EQ(Fake().log, Lines{Generating(kPciBridgeClass)});
  EXPECT_EQ(Fake().spawned, (std::vector<std::pair<std::string, int>>{{"lspci", 60}}));
}

TEST_F(ThreeFunctionMachineTest, DeviceInstanceHoldsEveryProperty) {
  Ask(kPciDeviceClass);
  ASSERT_EQ(Instances(kPciDeviceClass).size(), 1U);
  const vtq::Instance& network = *Instances(kPciDeviceClass)[0];
  EXPECT_EQ(Text(network, "CreationClassName"), "QZMSG_PCIDevice");
  EXPECT_EQ(Text(network, "SystemCreationClassName"), "CIM_ComputerSystem");
  EXPECT_EQ(Text(network, "SystemName"), "host.example");
  EXPECT_EQ(Text(network, "DeviceID"), "PCI Bus  3, device   0, function  0");
  EXPECT_EQ(Text(network, "Location"), "PCI Bus  3, device   0, function  0");
  EXPECT_EQ(Text(network, "Description"), "Ethernet controller: Example");
  EXPECT_EQ(Number(network, "VendorID"), 0x8086U);
  EXPECT_EQ(Number(network, "PciDeviceID"), 0x1234U);
  EXPECT_EQ(Number(network, "ClassCode"), 2U);
  EXPECT_EQ(Number(network, "IRQ"), 0x1FU);
  EXPECT_EQ(Number(network, "UINumber"), 2U);
  const auto numbers = [&](const char* name) {
    return Numbers(network.GetProperty(name, {}).value);
  };
  // An address of more than 32 bits is read as 0xffffffff, whose flag bit means I/O.
  EXPECT_EQ(numbers("IOAddress"), (std::vector<unsigned>{0xE000, 0xFFFC}));
  EXPECT_EQ(numbers("IOLength"), (std::vector<unsigned>{0x20, 0}));
  EXPECT_EQ(numbers("MEMAddress"), std::vector<unsigned>{0xF7E00000});
  EXPECT_EQ(numbers("MEMLength"), std::vector<unsigned>{0x4000});
}

TEST_F(ThreeFunctionMachineTest, BridgeInstanceHasNoSlotNumber) {
  Ask(kPciBridgeClass);
  ASSERT_EQ(Instances(kPciBridgeClass).size(), 1U);
  const vtq::Instance& bridge = *Instances(kPciBridgeClass)[0];
  EXPECT_EQ(Text(bridge, "CreationClassName"), "QZMSG_PCIBridge");
  EXPECT_EQ(Text(bridge, "DeviceID"), "PCI Bus  0, device   0, function  0");
  EXPECT_EQ(Text(bridge, "Description"), "Host bridge: Example");
  EXPECT_EQ(Number(bridge, "PciDeviceID"), 0x3C00U);
  EXPECT_EQ(Number(bridge, "ClassCode"), 6U);
  EXPECT_TRUE(bridge.GetProperty("UINumber", {}).value.IsNull());
}
