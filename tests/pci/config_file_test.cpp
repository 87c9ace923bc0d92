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

TEST_F(ConfigFileTest, HeadersAreReadAheadWhereTheyAreWhole) {
  std::vector<sPciDevices> records = {RecordOf(1), RecordOf(2), RecordOf(3), RecordOf(4)};
  MachineTree::Write("/proc/bus/pci/fe/01.3", CountingBytes());
  MachineTree::Write("/proc/bus/pci/fe/03.3", CountingBytes().substr(0, 63));
  MachineTree::Write("/proc/bus/pci/fe/04.3", CountingBytes().substr(0, 64));
  EXPECT_EQ(ReadHeadersAhead(&records), (std::vector<bool>{true, false, false, true}));
  for (unsigned i = 0; i < 256; ++i) {
    const unsigned read = i < 64 ? i : 0xAA;
    ASSERT_EQ(records[0].configSpace[i], read) << i;
    ASSERT_EQ(records[1].configSpace[i], 0xAA) << i;
    ASSERT_EQ(records[2].configSpace[i], 0xAA) << i;
    ASSERT_EQ(records[3].configSpace[i], read) << i;
  }
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(ConfigFileTest, OfNoFunctionsNothingIsRead) {
  std::vector<sPciDevices> records;
  EXPECT_TRUE(ReadHeadersAhead(&records).empty());
}
