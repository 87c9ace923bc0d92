// SPDX-License-Identifier: Apache-2.0
#include "pci/hardware_probe.h"

#include <gtest/gtest.h>

#include "tests/pci/fake_hwinfo.h"

using NQZMVTQ20::TCIMValue;

namespace {

constexpr const char* kBridge = "0000:00:1c.0";

TPropertyMap WithNumber(unsigned char number) { return {{"UINumber", TCIMValue(number)}}; }

TPropertyMap At(const char* location) { return {{"Location", TCIMValue(location)}}; }

THwinfoSlotMap Slots() {
  return {{"PCIBus2device0function0", TCIMValue(static_cast<unsigned char>(5))}};
}

unsigned Number(const TPropertyMap& properties) {
  return static_cast<unsigned>(properties.at("UINumber"));
}

TPropertyMap FilledIn(TPropertyMap device, const THwinfoSlotMap& slots = Slots()) {
  std::vector<TPropertyMap> devices{std::move(device)};
  FillInSlotNumbers(slots, &devices);
  return devices[0];
}

}  // namespace

class ProbeBelowBridgeTest : public testing::Test {
 protected:
  void Probe(const std::string& bridge = kBridge, unsigned char number = 5) {
    ProbeBelowBridge(bridge, WithNumber(number), &slots);
  }

  FakeHwinfo hwinfo;
  THwinfoSlotMap slots;
};

TEST(HasSlotNumber, OnlyANumberOtherThanZeroCounts) {
  EXPECT_FALSE(HasSlotNumber({}));
  EXPECT_FALSE(HasSlotNumber(WithNumber(0)));
  EXPECT_TRUE(HasSlotNumber(WithNumber(1)));
  EXPECT_TRUE(HasSlotNumber(WithNumber(255)));
}

TEST(ProbeCommand, LooksForFunctionsRightBelowTheBridge) {
  const std::string command = ProbeCommand(kBridge);
  EXPECT_EQ(command,
            "hwinfo --pci 2>&1 |grep "
            "0000:00:1c.0/0000:[0-9a-f][0-9a-f]:[0-9a-f][0-9a-f].[0-9a-f]$>infopci.txt");
  EXPECT_EQ(command.size(), 97U);
}

TEST(ProbeCommand, IsAsLongForEveryBridge) {
  EXPECT_EQ(ProbeCommand("0000:0a:1f.7"),
            "hwinfo --pci 2>&1 |grep "
            "0000:0a:1f.7/0000:[0-9a-f][0-9a-f]:[0-9a-f][0-9a-f].[0-9a-f]$>infopci.txt");
}

TEST(LastProbedAddress, IsTheEndOfThePathWithoutItsDomain) {
  EXPECT_EQ(LastProbedAddress("  SysFS ID: /devices/pci0000:00/0000:00:1c.0/0000:02:00.0"),
            "02:00.0");
}

TEST(LastProbedAddress, LastLineWins) {
  EXPECT_EQ(LastProbedAddress("/devices/pci0000:00/0000:00:1c.0/0000:02:00.0\n"
                              "/devices/pci0000:00/0000:00:1c.0/0000:02:00.1\n"),
            "02:00.1\n");
}

TEST(LastProbedAddress, TextWithoutPathLosesItsDomainOnly) {
  EXPECT_EQ(LastProbedAddress("0000:02:00.0"), "02:00.0");
  EXPECT_EQ(LastProbedAddress("000"), "");
  EXPECT_EQ(LastProbedAddress(""), "");
  EXPECT_EQ(LastProbedAddress("/"), "");
}

TEST_F(ProbeBelowBridgeTest, FunctionBelowTheBridgeGetsTheBridgesNumber) {
  hwinfo.Print(
      "19: PCI 200.0: 0200 Ethernet controller\n"
      "  SysFS ID: /devices/pci0000:00/0000:00:1c.0/0000:02:00.0\n"
      "  SysFS BusID: 0000:02:00.0\n");
  Probe();
  ASSERT_EQ(slots.size(), 1U);
  EXPECT_EQ(slots.at("PCIBus2device0function0"), TCIMValue(static_cast<unsigned char>(5)));
  EXPECT_EQ(hwinfo.Runs(), "--pci\n");
  EXPECT_EQ(hwinfo.Probes(), "  SysFS ID: /devices/pci0000:00/0000:00:1c.0/0000:02:00.0\n");
}

TEST_F(ProbeBelowBridgeTest, ErrorOutputIsSearchedAsWell) {
  hwinfo.WriteScript("echo /devices/pci0000:00/0000:00:1c.0/0000:02:00.0 >&2\n");
  Probe();
  EXPECT_EQ(slots.count("PCIBus2device0function0"), 1U);
}

TEST_F(ProbeBelowBridgeTest, OfSeveralFunctionsTheLastOneIsUsed) {
  hwinfo.Print(
      "  SysFS ID: /devices/pci0000:00/0000:00:1c.0/0000:02:00.1\n"
      "  SysFS ID: /devices/pci0000:00/0000:00:1c.0/0000:02:00.0\n");
  Probe();
  ASSERT_EQ(slots.size(), 1U);
  EXPECT_EQ(slots.begin()->first, "PCIBus2device0function0");
}

TEST_F(ProbeBelowBridgeTest, FunctionsElsewhereAreNotUsed) {
  hwinfo.Print(
      "  SysFS ID: /devices/pci0000:00/0000:00:1c.0\n"
      "  SysFS ID: /devices/pci0000:00/0000:00:1c.4/0000:02:00.0\n"
      "  SysFS ID: /devices/pci0000:00/0000:00:1c.0/0000:02:00.0/0000:03:00.0\n"
      "  SysFS ID: /devices/pci0000:00/0000:00:1c.0/0000:02:00.0/net\n");
  Probe();
  EXPECT_TRUE(slots.empty());
}

TEST_F(ProbeBelowBridgeTest, FirstNumberOfAFunctionStays) {
  hwinfo.Print(
      "  SysFS ID: /devices/0000:00:1c.0/0000:02:00.0\n"
      "  SysFS ID: /devices/0000:00:1d.0/0000:02:00.0\n");
  Probe(kBridge, 5);
  Probe("0000:00:1d.0", 6);
  ASSERT_EQ(slots.size(), 1U);
  EXPECT_EQ(static_cast<unsigned>(slots.begin()->second), 5U);
}

TEST_F(ProbeBelowBridgeTest, ProbeFileIsOverwrittenByTheNextProbeAndLeftBehind) {
  hwinfo.Print(
      "/devices/0000:00:1c.0/0000:02:00.0\n"
      "/devices/0000:00:1d.0/0000:03:00.0\n");
  Probe(kBridge, 5);
  Probe("0000:00:1d.0", 6);
  EXPECT_EQ(hwinfo.Probes(), "/devices/0000:00:1d.0/0000:03:00.0\n");
  ASSERT_EQ(slots.size(), 2U);
  EXPECT_EQ(static_cast<unsigned>(slots.at("PCIBus2device0function0")), 5U);
  EXPECT_EQ(static_cast<unsigned>(slots.at("PCIBus3device0function0")), 6U);
}

TEST_F(ProbeBelowBridgeTest, EmptyOutputAddsNothing) {
  hwinfo.Print("");
  Probe();
  EXPECT_TRUE(slots.empty());
  EXPECT_EQ(hwinfo.Runs(), "--pci\n");
  EXPECT_TRUE(std::filesystem::is_empty(hwinfo.ProbeFile()));
}

TEST_F(ProbeBelowBridgeTest, FailingProbeAddsNothing) {
  hwinfo.WriteScript("echo no access >&2\nexit 1\n");
  Probe();
  EXPECT_TRUE(slots.empty());
  EXPECT_TRUE(std::filesystem::is_empty(hwinfo.ProbeFile()));
}

TEST_F(ProbeBelowBridgeTest, MissingProbeToolAddsNothing) {
  const std::filesystem::path grep =
      std::filesystem::exists("/usr/bin/grep") ? "/usr/bin/grep" : "/bin/grep";
  std::filesystem::create_symlink(grep, hwinfo.Programs() / "grep");
  hwinfo.HideAllOtherPrograms();
  hwinfo.Remove();
  Probe();
  EXPECT_TRUE(slots.empty());
  EXPECT_TRUE(std::filesystem::is_empty(hwinfo.ProbeFile()));
}

TEST_F(ProbeBelowBridgeTest, OutputThatCannotBeReadAddsNothing) {
  hwinfo.Print("/devices/0000:00:1c.0/0000:02:00.0\n");
  hwinfo.RemoveCurrentDirectory();
  EXPECT_NO_THROW(Probe());
  EXPECT_TRUE(slots.empty());
}

TEST(FillInSlotNumbers, DeviceWithoutNumberGetsTheOneOfItsLocation) {
  EXPECT_EQ(Number(FilledIn(At("PCI Bus  2, device   0, function  0"))), 5U);
}

TEST(FillInSlotNumbers, NumberZeroStays) {
  TPropertyMap device = At("PCI Bus  2, device   0, function  0");
  device.emplace("UINumber", TCIMValue(static_cast<unsigned char>(0)));
  EXPECT_EQ(Number(FilledIn(device)), 0U);
}

TEST(FillInSlotNumbers, AnyOtherNumberStays) {
  TPropertyMap device = At("PCI Bus  2, device   0, function  0");
  device.emplace("UINumber", TCIMValue(static_cast<unsigned char>(9)));
  EXPECT_EQ(Number(FilledIn(device)), 9U);
}

TEST(FillInSlotNumbers, DeviceElsewhereOrWithoutLocationGetsNone) {
  EXPECT_EQ(FilledIn(At("PCI Bus  2, device   0, function  1")).count("UINumber"), 0U);
  EXPECT_TRUE(FilledIn({}).empty());
}

TEST(FillInSlotNumbers, WithoutNumbersNothingChanges) {
  const TPropertyMap device = At("PCI Bus  2, device   0, function  0");
  EXPECT_EQ(FilledIn(device, {}), device);
}

TEST(FillInSlotNumbers, EveryDeviceIsLookedAt) {
  std::vector<TPropertyMap> devices{At("PCI Bus  1, device   0, function  0"),
                                    At("PCI Bus  2, device   0, function  0"),
                                    At("PCI Bus  2, device   0, function  0")};
  FillInSlotNumbers(Slots(), &devices);
  EXPECT_EQ(devices[0].count("UINumber"), 0U);
  EXPECT_EQ(Number(devices[1]), 5U);
  EXPECT_EQ(Number(devices[2]), 5U);
}

TEST(FillInSlotNumbers, NoDevicesAreNoTrouble) {
  std::vector<TPropertyMap> devices;
  FillInSlotNumbers(Slots(), &devices);
  EXPECT_TRUE(devices.empty());
}
