// SPDX-License-Identifier: Apache-2.0
#include <iterator>
#include <stdexcept>

#include "tests/pci/failing_allocation.h"
#include "tests/pci/fake_hwinfo.h"
#include "tests/pci/pci_fixture.h"

using NQZMVTQ20::TCIMValue;

namespace {

FakeFunction Function(unsigned device, std::uint8_t baseClass, std::uint8_t subclass = 0) {
  FakeFunction function;
  function.device = device;
  function.baseClass = baseClass;
  function.subclass = subclass;
  return function;
}

FakeFunction OnBus(unsigned bus, FakeFunction function) {
  function.bus = bus;
  return function;
}

std::string ConfigFile(unsigned device) {
  return "/proc/bus/pci/00/0" + std::to_string(device) + ".0";
}

Lines Locations(const std::vector<TPropertyMap>& maps) {
  Lines locations;
  for (const TPropertyMap& map : maps) locations.push_back(Text(map, "Location"));
  return locations;
}

std::string LocationOf(unsigned device) {
  return "PCI Bus  0, device   " + std::to_string(device) + ", function  0";
}

}  // namespace

class InventoryTest : public PciTest {
 protected:
  InventoryTest() {
    Fake().commands["lspci"] = [] { return std::string("none\n"); };
    MachineTree::Write("/proc/pci", "none\n");
  }

  void Pass() { Collector().GetPciInfo(&bridges, &devices); }

  FakeHwinfo hwinfo;
  std::vector<TPropertyMap> bridges;
  std::vector<TPropertyMap> devices;
};

TEST_F(InventoryTest, EmptyDeviceListAppendsNothing) {
  PutFunctions({});
  Pass();
  EXPECT_TRUE(bridges.empty());
  EXPECT_TRUE(devices.empty());
  EXPECT_EQ(Fake().log, (Lines{Entering("GetPciInfo"), Entering("ScanPciDevices"),
                               Exiting("ScanPciDevices"), Exiting("GetPciInfo")}));
}

TEST_F(InventoryTest, MissingDeviceListAppendsNothing) {
  Pass();
  EXPECT_TRUE(bridges.empty());
  EXPECT_TRUE(devices.empty());
  EXPECT_EQ(Fake().log, (Lines{Entering("GetPciInfo"), Entering("ScanPciDevices"),
                               "2 Could not open PCI devices file.", Exiting("GetPciInfo")}));
}

TEST_F(InventoryTest, BaseClassAloneTellsBridgesFromDevices) {
  FakeFunction bridgeWithDeviceHeader = Function(3, 0x06, 0x04);
  FakeFunction deviceWithBridgeHeader = Function(4, 0x0C, 0x06);
  deviceWithBridgeHeader.header = Header(deviceWithBridgeHeader);
  deviceWithBridgeHeader.header[0x0E] = 1;
  PutFunctions({Function(0, 0x06, 0x00), Function(1, 0x06, 0x01), Function(2, 0x06, 0x80),
                bridgeWithDeviceHeader, deviceWithBridgeHeader, Function(5, 0x00, 0x06),
                Function(6, 0xFF)});
  Pass();
  EXPECT_EQ(Locations(bridges),
            (Lines{LocationOf(0), LocationOf(1), LocationOf(2), LocationOf(3)}));
  EXPECT_EQ(Locations(devices), (Lines{LocationOf(4), LocationOf(5), LocationOf(6)}));
  for (const TPropertyMap& bridge : bridges) {
    EXPECT_EQ(Text(bridge, "CreationClassName"), kPciBridgeClass);
  }
  for (const TPropertyMap& device : devices) {
    EXPECT_EQ(Text(device, "CreationClassName"), kPciDeviceClass);
  }
}

TEST_F(InventoryTest, FunctionWithoutReadableConfigurationSpaceIsInNeitherList) {
  PutFunctions({Function(1, 0x06), Function(2, 0x02), Function(3, 0x02), Function(4, 0x02)});
  MachineTree::Remove(ConfigFile(1));
  MachineTree::Remove(ConfigFile(2));
  MachineTree::Write(ConfigFile(3), "short");
  Pass();
  EXPECT_TRUE(bridges.empty());
  EXPECT_EQ(Locations(devices), Lines{LocationOf(4)});
  EXPECT_EQ(Fake().LogOf(2), (Lines{"Could not open PCI file./proc/bus/pci/00/01.0",
                                    "Could not open PCI file./proc/bus/pci/00/02.0",
                                    "Could not read PCI file /proc/bus/pci/00/03.0"}));
}

TEST_F(InventoryTest, TheLogSpeaksOfEachHeaderWhenItsFunctionIsLookedAt) {
  PutFunctions({Function(1, 0x06), Function(2, 0x02), Function(3, 0x02)});
  MachineTree::Remove(ConfigFile(2));
  Pass();
  Lines log;
  std::copy_if(Fake().log.begin(), Fake().log.end(), std::back_inserter(log),
               [](const std::string& record) {
                 return record.find("PciRead") != record.npos || record[0] == '2' ||
                        record.find("GetCommonDevProperties") != record.npos;
               });
  const Lines described = {Entering("PciRead"), Exiting("PciRead"),
                           Entering("GetCommonDevProperties"), Exiting("GetCommonDevProperties")};
  EXPECT_EQ(log, Join({described,
                       {Entering("PciRead"), "2 Could not open PCI file./proc/bus/pci/00/02.0"},
                       described}));
}

// lspci runs when the first function is described.
TEST_F(InventoryTest, HeaderThatAppearsBeforeItsTurnIsRead) {
  PutFunctions({Function(1, 0x02), Function(2, 0x02), Function(3, 0x06)});
  MachineTree::Remove(ConfigFile(2));
  MachineTree::Remove(ConfigFile(3));
  Fake().commands["lspci"] = [] {
    MachineTree::Write(ConfigFile(2), AsText(Header(Function(2, 0x02))));
    MachineTree::Write(ConfigFile(3), AsText(Header(Function(3, 0x06))));
    return std::string("none\n");
  };
  Pass();
  EXPECT_EQ(Locations(devices), (Lines{LocationOf(1), LocationOf(2)}));
  EXPECT_EQ(Locations(bridges), Lines{LocationOf(3)});
  EXPECT_TRUE(Fake().LogOf(2).empty());
}

TEST_F(InventoryTest, HeaderThatIsGoneInItsTurnIsNotRead) {
  PutFunctions({Function(1, 0x02), Function(2, 0x02), Function(3, 0x06), Function(4, 0x06)});
  Fake().commands["lspci"] = [] {
    MachineTree::Remove(ConfigFile(2));
    MachineTree::Remove(ConfigFile(3));
    return std::string("none\n");
  };
  Pass();
  EXPECT_EQ(Locations(devices), Lines{LocationOf(1)});
  EXPECT_EQ(Locations(bridges), Lines{LocationOf(4)});
  EXPECT_EQ(Fake().LogOf(2), (Lines{"Could not open PCI file./proc/bus/pci/00/02.0",
                                    "Could not open PCI file./proc/bus/pci/00/03.0"}));
}

TEST_F(InventoryTest, HeaderThatChangesBeforeItsTurnIsReadAsItIsThen) {
  PutFunctions({Function(1, 0x02), Function(2, 0x02)});
  Fake().commands["lspci"] = [] {
    MachineTree::Write(ConfigFile(2), AsText(Header(Function(2, 0x06))));
    return std::string("none\n");
  };
  Pass();
  EXPECT_EQ(Locations(devices), Lines{LocationOf(1)});
  EXPECT_EQ(Locations(bridges), Lines{LocationOf(2)});
}

TEST_F(InventoryTest, FunctionWithoutMemoryForItsHeaderIsInNeitherList) {
  PutFunctions({Function(1, 0x06), Function(2, 0x02)});
  {
    const FailingAllocation failing;
    Pass();
  }
  EXPECT_TRUE(bridges.empty());
  EXPECT_TRUE(devices.empty());
  EXPECT_EQ(Fake().log,
            (Lines{Entering("GetPciInfo"), Entering("ScanPciDevices"), Exiting("ScanPciDevices"),
                   Entering("PciRead"), "0 Could not allocate memory.", Entering("PciRead"),
                   "0 Could not allocate memory.", Exiting("GetPciInfo")}));
  EXPECT_TRUE(Fake().spawned.empty()) << "no function, no listing";
}

TEST_F(InventoryTest, FunctionWhoseIdentifiersDisagreeIsInNeitherList) {
  FakeFunction other = Function(0, 0x06);
  other.vendorId = 0x8087;
  FakeFunction otherDevice = Function(0, 0x02);
  otherDevice.deviceId = 0x1235;
  PutFunctions({Function(1, 0x06), Function(2, 0x02)});
  MachineTree::Write(ConfigFile(1), AsText(Header(other)));
  MachineTree::Write(ConfigFile(2), AsText(Header(otherDevice)));
  Pass();
  EXPECT_TRUE(bridges.empty());
  EXPECT_TRUE(devices.empty());
  EXPECT_EQ(Fake().LogOf(2),
            (Lines{"Configuration vendor id 32903 and devices file vendor id 32902 did not match.",
                   "Configuration device id 4661 and devices file device id 4660 did not match."}));
  EXPECT_EQ(Fake().log.back(), Exiting("GetPciInfo"));
}

TEST_F(InventoryTest, MapsAreAppended) {
  const TPropertyMap other{{"Location", TCIMValue("PCI Bus  2, device   0, function  0")}};
  bridges = devices = {other};
  PutFunctions({Function(1, 0x06), Function(2, 0x02)});
  Pass();
  ASSERT_EQ(bridges.size(), 2U);
  ASSERT_EQ(devices.size(), 2U);
  EXPECT_EQ(bridges[0], other);
  EXPECT_EQ(devices[0], other);
}

TEST_F(InventoryTest, DevicesAreLeftAsTheyWereBuiltAndNothingIsRunWithoutBusInformation) {
  hwinfo.Print("/devices/0000:00:01.0/0000:00:02.0\n");
  PutFunctions({Function(1, 0x06), Function(2, 0x02)});
  Pass();
  ASSERT_EQ(bridges.size(), 1U);
  ASSERT_EQ(devices.size(), 1U);
  EXPECT_EQ(bridges[0].count("UINumber"), 0U);
  EXPECT_EQ(devices[0].count("UINumber"), 0U);
  EXPECT_EQ(hwinfo.Runs(), "");
  EXPECT_FALSE(std::filesystem::exists(hwinfo.ProbeFile()));
  EXPECT_EQ(Fake().spawned.size(), 1U) << "the listing only";
}

TEST_F(InventoryTest, DevicesAreLeftAsTheyWereBuiltAndNothingIsRunWithBusInformation) {
  hwinfo.Print("/devices/0000:00:01.0/0000:02:00.0\n");
  processState.slotIDRetrievalType = 2;
  slotBusCollectionVect = {{5, 0, 0, 0, 0}, {0x100, 0, 3, 3, 3}};
  const FakeFunction inNoSlot = OnBus(2, Function(0, 0x02));
  const FakeFunction inSlotZero = OnBus(3, Function(0, 0x02));
  PutFunctions({Function(1, 0x06), Function(2, 0x02), inNoSlot, inSlotZero});
  Pass();
  ASSERT_EQ(bridges.size(), 1U);
  ASSERT_EQ(devices.size(), 3U);
  EXPECT_EQ(Number(bridges[0], "UINumber"), 5U);
  EXPECT_EQ(Number(devices[0], "UINumber"), 5U);
  EXPECT_EQ(devices[1].count("UINumber"), 0U);
  EXPECT_EQ(Number(devices[2], "UINumber"), 0U);
  EXPECT_EQ(hwinfo.Runs(), "");
  EXPECT_FALSE(std::filesystem::exists(hwinfo.ProbeFile()));
}

TEST_F(InventoryTest, ExceptionLeavesThePassAndTheListsKeepWhatTheyHave) {
  PutFunctions({Function(1, 0x06), Function(2, 0x02), Function(3, 0x02)});
  const auto faulty = std::make_shared<FaultyClass>(deviceClass);
  int asked = 0;
  faulty->onGetNamespace = [&] {
    if (++asked == 3) throw std::runtime_error("broken");
  };
  TPciDevInfo collector(faulty, &provider);
  EXPECT_THROW(collector.GetPciInfo(&bridges, &devices), std::runtime_error);
  EXPECT_EQ(Locations(bridges), Lines{LocationOf(1)});
  EXPECT_EQ(Locations(devices), Lines{LocationOf(2)});
  EXPECT_EQ(std::count(Fake().log.begin(), Fake().log.end(), Exiting("GetPciInfo")), 0);
}

TEST_F(InventoryTest, ProbedAddressAndLocationGiveTheSameKey) {
  TPciDevInfo collector = Collector();
  EXPECT_EQ(collector.Parsehwinfo("00:00.0"), "PCIBus0device0function0");
  EXPECT_EQ(collector.Parsehwinfo("ff:1f.7"), "PCIBus255device31function7");
  EXPECT_EQ(collector.Parsehwinfo("00:1f.2\n"), "PCIBus0device31function2");
  EXPECT_EQ(collector.Parsehwinfo("3a:00.0"), "PCIBus58device0function0");
  EXPECT_EQ(collector.Parsedevid("PCI Bus  0, device  31, function  2"),
            "PCIBus0device31function2");
  EXPECT_EQ(collector.Parsedevid(""), "");
  EXPECT_EQ(collector.Parsedevid("PCIBus"), "PCIBus");
  EXPECT_TRUE(Fake().log.empty());
}
