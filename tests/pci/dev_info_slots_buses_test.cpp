// SPDX-License-Identifier: Apache-2.0
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

#include "tests/pci/pci_fixture.h"

namespace {

using Bytes = std::vector<unsigned char>;
using Collections = std::vector<SlotBusCollection>;

constexpr const char* kEntering = "3 Entering readPCIConfigForSlots";
constexpr const char* kExiting = "3 Exiting readPCIConfigForSlots";

constexpr const char* kSysConfig = "/sys/bus/pci/devices/0000:03:02.1/config";
constexpr const char* kProcConfig = "/proc/bus/pci/03/02.1";

// A slot in use at 0000:03:02.1.
SlotLocation UsedSlot() { return {7, 0x1234, 0, 3, 2, 1, 4}; }

Bytes DeviceHeader() { return Header(FakeFunction()); }

Bytes BridgeHeader(unsigned char primary, unsigned char secondary, unsigned char subordinate) {
  Bytes header = DeviceHeader();
  header[0x0E] = 1;
  header[0x18] = primary;
  header[0x19] = secondary;
  header[0x1A] = subordinate;
  return header;
}

std::vector<unsigned> Buses(const SlotBusCollection& slot) {
  return {slot.bus, slot.secondaryBus, slot.subordinateBus};
}

}  // namespace

class SlotBusesTest : public PciTest {
 protected:
  Collections ReadConfig(std::vector<SlotLocation> slots) {
    Collections collections;
    EXPECT_EQ(Collector().readPCIConfigForSlots(&slots, &collections), 0);
    return collections;
  }
  Collections ReadHeader(const Bytes& header) {
    MachineTree::Write(kSysConfig, AsText(header));
    return ReadConfig({UsedSlot()});
  }
};

TEST_F(SlotBusesTest, SlotWithADeviceLeadsToItsOwnBus) {
  const Collections collections = ReadHeader(DeviceHeader());
  ASSERT_EQ(collections.size(), 1U);
  EXPECT_EQ(collections[0].tag, 7);
  EXPECT_EQ(collections[0].slotId, 0x1234);
  EXPECT_EQ(Buses(collections[0]), (std::vector<unsigned>{3, 3, 3}));
  EXPECT_EQ(Fake().log, (Lines{kEntering, "3 segNum = 0, bus = 3, dev = 2, func = 1",
                               "3 /sys/bus/pci/devices/0000:03:02.1/config", kExiting}));
}

TEST_F(SlotBusesTest, SlotWithABridgeLeadsToTheBusesBehindItFirst) {
  const Collections collections = ReadHeader(BridgeHeader(0, 5, 7));
  ASSERT_EQ(collections.size(), 2U);
  EXPECT_EQ(collections[0].tag, 7);
  EXPECT_EQ(collections[0].slotId, 0x1234);
  EXPECT_EQ(Buses(collections[0]), (std::vector<unsigned>{0, 5, 7}));
  EXPECT_EQ(collections[1].tag, 7);
  EXPECT_EQ(collections[1].slotId, 0x1234);
  EXPECT_EQ(Buses(collections[1]), (std::vector<unsigned>{3, 3, 3}));
}

TEST_F(SlotBusesTest, BridgeSlotAnswersItsPrimaryBusTheRangeBehindItAndItsOwnBus) {
  Collections collections = ReadHeader(BridgeHeader(0, 5, 7));
  for (const int bus : {0, 3, 5, 6, 7})
    EXPECT_EQ(Collector().correlateDeviceAndSlot(bus, &collections), 7U) << bus;
  for (const int bus : {1, 2, 4, 8, 255}) {
    EXPECT_EQ(Collector().correlateDeviceAndSlot(bus, &collections), 0xFFFFFFFFU) << bus;
  }
}

TEST_F(SlotBusesTest, MultiFunctionBitDoesNotChangeTheKindOfHeader) {
  Bytes bridge = BridgeHeader(0, 5, 7);
  bridge[0x0E] = 0x81;
  EXPECT_EQ(ReadHeader(bridge).size(), 2U);
  Bytes device = DeviceHeader();
  device[0x0E] = 0x80;
  EXPECT_EQ(ReadHeader(device).size(), 1U);
}

TEST_F(SlotBusesTest, CardbusBridgeCountsAsADevice) {
  Bytes cardbus = BridgeHeader(0, 5, 7);
  cardbus[0x0E] = 2;
  EXPECT_EQ(ReadHeader(cardbus).size(), 1U);
}

TEST_F(SlotBusesTest, SlotWhereNobodyAnswersLeadsNowhere) {
  Bytes header = BridgeHeader(0, 5, 7);
  for (const int byte : {0x00, 0xFF}) {
    header[0] = header[1] = static_cast<unsigned char>(byte);
    EXPECT_TRUE(ReadHeader(header).empty());
  }
  for (const Bytes& vendor : {Bytes{0x00, 0xFF}, {0xFF, 0x00}, {0xFF, 0x12}, {0x00, 0x12}}) {
    std::copy(vendor.begin(), vendor.end(), header.begin());
    EXPECT_EQ(ReadHeader(header).size(), 2U) << int{vendor[0]} << ' ' << int{vendor[1]};
  }
}

TEST_F(SlotBusesTest, OnlySlotsInUseAreRead) {
  MachineTree::Write(kSysConfig, AsText(DeviceHeader()));
  for (const int usage : {0, 1, 2, 3, 5, 255}) {
    Fake().log.clear();
    SlotLocation slot = UsedSlot();
    slot.currentUsage = static_cast<std::uint8_t>(usage);
    EXPECT_TRUE(ReadConfig({slot}).empty()) << usage;
    EXPECT_EQ(Fake().log, (Lines{kEntering, "3 segNum = 0, bus = 3, dev = 2, func = 1", kExiting}));
  }
}

TEST_F(SlotBusesTest, SegmentGroupFfIsPassedOver) {
  SlotLocation slot = UsedSlot();
  slot.segmentGroup = 0xFF;
  MachineTree::Write("/sys/bus/pci/devices/00ff:03:02.1/config", AsText(DeviceHeader()));
  EXPECT_TRUE(ReadConfig({slot}).empty());
  EXPECT_EQ(Fake().log, (Lines{kEntering, "3 segNum = ff, bus = 3, dev = 2, func = 1", kExiting}));
}

TEST_F(SlotBusesTest, SegmentGroupsThatEndWithFfAreNotPassedOver) {
  for (const unsigned segmentGroup : {0x01FFU, 0xFFFFU}) {
    SlotLocation slot = UsedSlot();
    slot.segmentGroup = static_cast<std::uint16_t>(segmentGroup);
    MachineTree::Write(segmentGroup == 0xFFFF ? "/sys/bus/pci/devices/ffff:03:02.1/config"
                                              : "/sys/bus/pci/devices/01ff:03:02.1/config",
                       AsText(DeviceHeader()));
    EXPECT_EQ(ReadConfig({slot}).size(), 1U) << segmentGroup;
  }
}

TEST_F(SlotBusesTest, SegmentGroupIsTheDomainInThePath) {
  SlotLocation slot = UsedSlot();
  slot.segmentGroup = 0xFF00;
  slot.bus = 0xE1;
  slot.device = 0x1F;
  slot.function = 7;
  MachineTree::Write("/sys/bus/pci/devices/ff00:e1:1f.7/config", AsText(DeviceHeader()));
  EXPECT_EQ(ReadConfig({slot}).size(), 1U);
  EXPECT_EQ(Fake().log, (Lines{kEntering, "3 segNum = ff00, bus = e1, dev = 1f, func = 7",
                               "3 /sys/bus/pci/devices/ff00:e1:1f.7/config", kExiting}));
}

TEST_F(SlotBusesTest, ProcFileStandsInForAMissingSysFile) {
  MachineTree::Write(kProcConfig, AsText(BridgeHeader(0, 5, 7)));
  EXPECT_EQ(ReadConfig({UsedSlot()}).size(), 2U);
  EXPECT_EQ(Fake().log, (Lines{kEntering, "3 segNum = 0, bus = 3, dev = 2, func = 1",
                               "3 /sys/bus/pci/devices/0000:03:02.1/config",
                               "3 /proc/bus/pci/03/02.1", kExiting}));
}

TEST_F(SlotBusesTest, SysFileIsPreferred) {
  MachineTree::Write(kProcConfig, AsText(BridgeHeader(0, 5, 7)));
  EXPECT_EQ(ReadHeader(DeviceHeader()).size(), 1U);
  EXPECT_EQ(ReadHeader({}).size(), 0U) << "even when it is too short";
}

TEST_F(SlotBusesTest, SlotWithoutConfigurationFileIsLogged) {
  EXPECT_TRUE(ReadConfig({UsedSlot()}).empty());
  EXPECT_EQ(Fake().log,
            (Lines{kEntering, "3 segNum = 0, bus = 3, dev = 2, func = 1",
                   "3 /sys/bus/pci/devices/0000:03:02.1/config", "3 /proc/bus/pci/03/02.1",
                   "3 no PCI config file, read failed", kExiting}));
}

TEST_F(SlotBusesTest, ShortConfigurationFileIsLogged) {
  const Lines expected{kEntering, "3 segNum = 0, bus = 3, dev = 2, func = 1",
                       "3 /sys/bus/pci/devices/0000:03:02.1/config", "3 read PCI config failed",
                       kExiting};
  for (const std::size_t size : {0U, 1U, 63U}) {
    Fake().log.clear();
    Bytes header = DeviceHeader();
    header.resize(size);
    EXPECT_TRUE(ReadHeader(header).empty()) << size;
    EXPECT_EQ(Fake().log, expected) << size;
  }
}

TEST_F(SlotBusesTest, DirectoryInPlaceOfTheConfigurationFileCountsAsShort) {
  std::filesystem::create_directories(MachineTree::Real(kSysConfig));
  EXPECT_TRUE(ReadConfig({UsedSlot()}).empty());
  EXPECT_EQ(Fake().log[3], "3 read PCI config failed");
}

TEST_F(SlotBusesTest, ConfigurationFileThatCannotBeOpenedCountsAsShort) {
  // A socket exists, but open() fails for it for every user.
  const std::string path = MachineTree::Real(kSysConfig);
  std::filesystem::create_directories(MachineTree::Real(kSysConfig).parent_path());
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(path.size(), sizeof address.sun_path);
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  close(descriptor);
  EXPECT_TRUE(ReadConfig({UsedSlot()}).empty());
  EXPECT_EQ(Fake().log, (Lines{kEntering, "3 segNum = 0, bus = 3, dev = 2, func = 1",
                               "3 /sys/bus/pci/devices/0000:03:02.1/config",
                               "3 read PCI config failed", kExiting}));
}

TEST_F(SlotBusesTest, EverySlotIsLookedAtInOrderAndItsBusesAreAppended) {
  SlotLocation unused = UsedSlot();
  unused.currentUsage = 3;
  SlotLocation missing = UsedSlot();
  missing.bus = 9;
  SlotLocation second = UsedSlot();
  second.tag = 8;
  second.bus = 4;
  MachineTree::Write(kSysConfig, AsText(BridgeHeader(0, 5, 7)));
  MachineTree::Write("/proc/bus/pci/04/02.1", AsText(DeviceHeader()));
  std::vector<SlotLocation> slots{unused, missing, UsedSlot(), second};
  Collections collections(1);
  EXPECT_EQ(Collector().readPCIConfigForSlots(&slots, &collections), 0);
  ASSERT_EQ(collections.size(), 4U);
  EXPECT_EQ(collections[0].tag, 0) << "what was there stays";
  EXPECT_EQ(collections[1].tag, 7);
  EXPECT_EQ(collections[2].tag, 7);
  EXPECT_EQ(collections[3].tag, 8);
  EXPECT_EQ(Buses(collections[3]), (std::vector<unsigned>{4, 4, 4}));
  EXPECT_EQ(
      Fake().log,
      (Lines{kEntering, "3 segNum = 0, bus = 3, dev = 2, func = 1",
             "3 segNum = 0, bus = 9, dev = 2, func = 1",
             "3 /sys/bus/pci/devices/0000:09:02.1/config", "3 /proc/bus/pci/09/02.1",
             "3 no PCI config file, read failed", "3 segNum = 0, bus = 3, dev = 2, func = 1",
             "3 /sys/bus/pci/devices/0000:03:02.1/config",
             "3 segNum = 0, bus = 4, dev = 2, func = 1",
             "3 /sys/bus/pci/devices/0000:04:02.1/config", "3 /proc/bus/pci/04/02.1", kExiting}));
}

TEST_F(SlotBusesTest, NoSlotsAreNoTrouble) {
  EXPECT_TRUE(ReadConfig({}).empty());
  EXPECT_EQ(Fake().log, (Lines{kEntering, kExiting}));
}
