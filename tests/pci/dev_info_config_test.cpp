// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/pci/failing_allocation.h"
#include "tests/pci/pci_fixture.h"

namespace {

const std::string kEntering = Entering("PciRead");
const std::string kExiting = Exiting("PciRead");

// 256 bytes: 0, 1, 2, ...
std::string CountingBytes() {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  return bytes;
}

}  // namespace

class PciReadTest : public PciTest {
 protected:
  PciReadTest() {
    records[0].bus = 3;
    records[0].device = 0x1f;
    records[0].function = 2;
    records[0].configSpace.fill(0xAA);
  }

  unsigned Read() { return Collector().PciRead(records.begin()); }
  bool IsUnchanged() const {
    return std::all_of(records[0].configSpace.begin(), records[0].configSpace.end(),
                       [](unsigned char byte) { return byte == 0xAA; });
  }

  std::vector<sPciDevices> records = std::vector<sPciDevices>(1);
};

TEST_F(PciReadTest, ReadsTheFirstSixtyFourBytesAndLeavesTheRest) {
  MachineTree::Write("/proc/bus/pci/03/1f.2", CountingBytes());
  EXPECT_EQ(Read(), 0U);
  for (unsigned i = 0; i < 256; ++i) {
    ASSERT_EQ(records[0].configSpace[i], i < 64 ? i : 0xAA) << i;
  }
  EXPECT_EQ(Fake().log, (Lines{kEntering, kExiting}));
}

TEST_F(PciReadTest, FileOfExactlySixtyFourBytesIsEnough) {
  MachineTree::Write("/proc/bus/pci/03/1f.2", CountingBytes().substr(0, 64));
  EXPECT_EQ(Read(), 0U);
  EXPECT_EQ(records[0].configSpace[63], 63);
}

TEST_F(PciReadTest, FirstFunctionOfTheMachine) {
  records[0].bus = records[0].device = records[0].function = 0;
  MachineTree::Write("/proc/bus/pci/00/00.0", CountingBytes());
  EXPECT_EQ(Read(), 0U);
  EXPECT_EQ(records[0].configSpace[1], 1);
}

TEST_F(PciReadTest, MissingFileIsLoggedWithoutABlankBeforeItsPath) {
  EXPECT_EQ(Read(), 1U);
  EXPECT_TRUE(IsUnchanged());
  EXPECT_EQ(Fake().log, (Lines{kEntering, "2 Could not open PCI file./proc/bus/pci/03/1f.2"}));
}

TEST_F(PciReadTest, PathHasTwoHexadecimalDigitsForBusAndDevice) {
  records[0].bus = 0xfe;
  records[0].device = 0x0a;
  records[0].function = 7;
  Read();
  EXPECT_EQ(Fake().log.back(), "2 Could not open PCI file./proc/bus/pci/fe/0a.7");
}

TEST_F(PciReadTest, FunctionNumberInThePathIsDecimal) {
  records[0].function = 12;
  Read();
  EXPECT_EQ(Fake().log.back(), "2 Could not open PCI file./proc/bus/pci/03/1f.12");
}

TEST_F(PciReadTest, ShortFileIsLoggedAndChangesNothing) {
  for (const std::size_t size : {0U, 1U, 63U}) {
    Fake().log.clear();
    MachineTree::Write("/proc/bus/pci/03/1f.2", CountingBytes().substr(0, size));
    EXPECT_EQ(Read(), 1U) << size;
    EXPECT_TRUE(IsUnchanged()) << size;
    EXPECT_EQ(Fake().log, (Lines{kEntering, "2 Could not read PCI file /proc/bus/pci/03/1f.2"}));
  }
}

TEST_F(PciReadTest, DirectoryInPlaceOfTheFileCannotBeRead) {
  std::filesystem::create_directories(MachineTree::Real("/proc/bus/pci/03/1f.2"));
  EXPECT_EQ(Read(), 1U);
  EXPECT_TRUE(IsUnchanged());
  EXPECT_EQ(Fake().log, (Lines{kEntering, "2 Could not read PCI file /proc/bus/pci/03/1f.2"}));
}

TEST_F(PciReadTest, HeaderThatComesInTwoPartsIsNotRead) {
  MachineTree::Write("/proc/bus/pci/03/1f.2", "");
  MachineTree::Remove("/proc/bus/pci/03/1f.2");
  ASSERT_EQ(mkfifo("/proc/bus/pci/03/1f.2", 0600), 0);
  const int writer = open("/proc/bus/pci/03/1f.2", O_RDWR);
  ASSERT_GE(writer, 0);
  // A read takes what one write has put there and no more.
  ASSERT_EQ(fcntl(writer, F_SETFL, O_DIRECT), 0);
  const std::string part(32, 'x');
  for (int i = 0; i < 2; ++i) ASSERT_EQ(write(writer, part.data(), part.size()), 32);
  EXPECT_EQ(Read(), 1U);
  close(writer);
  EXPECT_TRUE(IsUnchanged());
  EXPECT_EQ(Fake().log, (Lines{kEntering, "2 Could not read PCI file /proc/bus/pci/03/1f.2"}));
}

TEST_F(PciReadTest, LackOfMemoryIsAnError) {
  MachineTree::Write("/proc/bus/pci/03/1f.2", CountingBytes());
  TPciDevInfo collector = Collector();
  unsigned status = 0;
  {
    const FailingAllocation noMemory;
    status = collector.PciRead(records.begin());
  }
  EXPECT_EQ(status, 1U);
  EXPECT_TRUE(IsUnchanged());
  EXPECT_EQ(Fake().log, (Lines{kEntering, "0 Could not allocate memory."}));
}

TEST_F(PciReadTest, KeepsNoFileOpen) {
  const auto nextDescriptor = [] {
    const int descriptor = dup(0);
    close(descriptor);
    return descriptor;
  };
  const int before = nextDescriptor();
  Read();
  MachineTree::Write("/proc/bus/pci/03/1f.2", "short");
  Read();
  MachineTree::Write("/proc/bus/pci/03/1f.2", CountingBytes());
  Read();
  TPciDevInfo collector = Collector();
  {
    const FailingAllocation noMemory;
    collector.PciRead(records.begin());
  }
  EXPECT_EQ(nextDescriptor(), before);
}

TEST_F(PciReadTest, ReadsTheRecordThatItIsGiven) {
  records.resize(2);
  records[1].function = 1;
  MachineTree::Write("/proc/bus/pci/00/00.1", CountingBytes());
  EXPECT_EQ(Collector().PciRead(records.begin() + 1), 0U);
  EXPECT_TRUE(IsUnchanged());
  EXPECT_EQ(records[1].configSpace[5], 5);
}

TEST_F(PciTest, FormatToStringRightAlignsAndNeverCuts) {
  TPciDevInfo collector = Collector();
  EXPECT_EQ(collector.FormatToString(5, 3), "  5");
  EXPECT_EQ(collector.FormatToString(123, 2), "123");
  EXPECT_EQ(collector.FormatToString(0, 2), " 0");
  EXPECT_EQ(collector.FormatToString(0, 1), "0");
  EXPECT_EQ(collector.FormatToString(-7, 3), " -7");
}
