#include "pci/config_file.h"

#include "tests/pci/pci_fixture.h"

namespace {

// 256 bytes: 0, 1, 2, ...
std::string CountingBytes() {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  return bytes;
}

sPciDevices RecordOf(std::uint8_t device) {
  sPciDevices record;
  record.bus = 0xfe;
  record.device = device;
  record.function = 3;
  record.configSpace.fill(0xAA);
  return record;
}

}  // namespace

class ConfigFileTest : public PciTest {};

TEST_F(ConfigFileTest, StandsWhereTheKernelHasIt) {
  const ConfigFile file(RecordOf(0x1f));
  EXPECT_EQ(file.GetPath(), "/proc/bus/pci/fe/1f.3");
  EXPECT_FALSE(file.IsOpen());
}

TEST_F(ConfigFileTest, AHeaderIsReadAheadWhereItIsWhole) {
  MachineTree::Write("/proc/bus/pci/fe/01.3", CountingBytes());
  MachineTree::Write("/proc/bus/pci/fe/04.3", CountingBytes().substr(0, 64));
  for (const std::uint8_t device : {std::uint8_t{1}, std::uint8_t{4}}) {
    sPciDevices record = RecordOf(device);
    EXPECT_TRUE(ReadHeaderAhead(&record));
    for (unsigned i = 0; i < 256; ++i) ASSERT_EQ(record.configSpace[i], i < 64 ? i : 0xAA) << i;
  }
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(ConfigFileTest, WhatCannotBeReadAheadStaysAsItWasWithoutAWord) {
  MachineTree::Write("/proc/bus/pci/fe/03.3", CountingBytes().substr(0, 63));
  for (const std::uint8_t device : {std::uint8_t{2}, std::uint8_t{3}}) {
    sPciDevices record = RecordOf(device);
    EXPECT_FALSE(ReadHeaderAhead(&record));
    EXPECT_EQ(record.configSpace, RecordOf(device).configSpace);
  }
  EXPECT_TRUE(Fake().log.empty());
}
