// SPDX-License-Identifier: Apache-2.0
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <optional>
#include <thread>

#include "tests/pci/pci_fixture.h"

namespace {

constexpr const char* kDevices = "/proc/bus/pci/devices";
const std::string kEntering = Entering("ScanPciDevices");
const std::string kExiting = Exiting("ScanPciDevices");

// Runs `action` in a child process. Returns its exit status, or nothing if it was killed because it
// was still running after `limit`.
template <class Action>
std::optional<int> RunFor(std::chrono::milliseconds limit, Action action) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);  // if this process has ended
    action();
    _exit(0);
  }
  const auto end = std::chrono::steady_clock::now() + limit;
  int status = 0;
  while (std::chrono::steady_clock::now() < end) {
    if (waitpid(child, &status, WNOHANG) == child) return status;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  kill(child, SIGKILL);
  waitpid(child, &status, 0);
  return std::nullopt;
}

// A line of a function with `length` characters; the last column, which is not read, fills it.
std::string LineOfLength(std::size_t length) {
  std::string line = "0010\t80861234\tb";
  for (int column = 4; column <= 17; ++column) line += "\t1";
  line += "\t";
  return line + std::string(length - line.size(), 'd');
}

}  // namespace

class ScanTest : public PciTest {
 protected:
  std::vector<sPciDevices> Scan() { return Collector().ScanPciDevices(); }
  std::vector<sPciDevices> Scan(const std::string& list) {
    MachineTree::Write(kDevices, list);
    return Scan();
  }
};

TEST_F(ScanTest, MissingDeviceListIsLoggedAndGivesNothing) {
  EXPECT_TRUE(Scan().empty());
  EXPECT_EQ(Fake().log, (Lines{kEntering, "2 Could not open PCI devices file."}));
}

TEST_F(ScanTest, EmptyDeviceListGivesNothing) {
  EXPECT_TRUE(Scan("").empty());
  EXPECT_EQ(Fake().log, (Lines{kEntering, kExiting}));
}

TEST_F(ScanTest, FunctionsComeInTheOrderOfTheList) {
  const auto records = Scan(
      "ff0f\t80861234\t0\n"
      "0010\t10de5678\tb\n");
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].bus, 0xFF);
  EXPECT_EQ(records[0].device, 1);
  EXPECT_EQ(records[0].function, 7);
  EXPECT_EQ(records[1].vendorId, 0x10DE);
  EXPECT_EQ(records[1].irq, 0x0B);
  EXPECT_EQ(Fake().log, (Lines{kEntering, kExiting}));
}

TEST_F(ScanTest, ConfigurationSpaceIsLeftZero) {
  FakeFunction function;
  PutFunctions({function});
  const auto records = Scan();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].configSpace, (std::array<std::uint8_t, 256>{}));
}

TEST_F(ScanTest, LinesThatDescribeNoFunctionAreSkippedSilently) {
  const auto records = Scan(
      "\n"
      "\t\t\n"
      "0008\t80860001\n"
      "0010\t0000ffff\t0b\n"
      "0018\t80860003\t0\n"
      "\n");
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].device, 3);
  EXPECT_EQ(Fake().log, (Lines{kEntering, kExiting}));
}

TEST_F(ScanTest, RecordHoldsNothingOfTheLineBefore) {
  const auto records = Scan(
      "0008\t80860001\t5\t1\t2\t3\t4\t5\t6\t0\t1\t2\t3\t4\t5\t6\n"
      "0010\t80860002\t0\n");
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].regionSize, (std::array<std::uint32_t, 6>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(records[1].irq, 0);
  EXPECT_EQ(records[1].baseAddress, (std::array<std::uint32_t, 6>{}));
  EXPECT_EQ(records[1].regionSize, (std::array<std::uint32_t, 6>{}));
}

TEST_F(ScanTest, LastLineNeedsNoLineEnd) {
  const auto records = Scan("0008\t80860001\t0\n0010\t80860002\tb");
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[1].irq, 0x0B);
}

TEST_F(ScanTest, ListIsReadAgainByEachScan) {
  EXPECT_EQ(Scan("0008\t80860001\t0\n").size(), 1U);
  EXPECT_EQ(Scan("0008\t80860001\t0\n0010\t80860002\t0\n").size(), 2U);
  MachineTree::Remove(kDevices);
  EXPECT_TRUE(Scan().empty());
}

TEST_F(ScanTest, LineOfFiveHundredAndElevenCharactersFits) {
  const auto records = Scan(LineOfLength(511) + "\n0018\t80860003\t0\n");
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].regionSize[5], 1U);
  EXPECT_EQ(records[1].device, 3);
}

TEST_F(ScanTest, LongerLineKeepsTheScanFromEnding) {
  MachineTree::Write(kDevices, LineOfLength(512) + "\n");
  EXPECT_EQ(RunFor(std::chrono::seconds(1), [this] { Scan(); }), std::nullopt);
  // With a line that fits, the scan ends long before the limit.
  MachineTree::Write(kDevices, LineOfLength(511) + "\n");
  EXPECT_EQ(RunFor(std::chrono::seconds(30), [this] { Scan(); }), 0);
}

TEST_F(ScanTest, WithoutProviderNothingIsLogged) {
  TPciDevInfo(deviceClass).ScanPciDevices();
  EXPECT_TRUE(Fake().log.empty());
}
