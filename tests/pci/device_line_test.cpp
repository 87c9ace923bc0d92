// SPDX-License-Identifier: Apache-2.0
#include "pci/device_line.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <sstream>
#include <string>

#include "plugin/values.h"

namespace {

using Regions = std::array<std::uint32_t, 6>;

constexpr Regions kNone{};

// A line with `count` columns after the third: 11, 12, ...
std::string LineWithColumns(int count) {
  std::string line = "0010\t80861234\tb";
  for (int column = 0; column < count; ++column) line += "\t" + std::to_string(11 + column);
  return line;
}

sPciDevices Parse(const std::string& line) {
  sPciDevices record;
  EXPECT_TRUE(ParseDeviceLine(line, &record)) << line;
  return record;
}

bool IsDropped(const std::string& line) {
  sPciDevices record;
  return !ParseDeviceLine(line, &record);
}

// The value of `column` as a base address.
std::uint32_t BaseAddress(const std::string& column) {
  return Parse("0010\t80861234\tb\t" + column + "\t0\t0\t0\t0\t0").baseAddress[0];
}

}  // namespace

TEST(DeviceLine, ThreeColumnsGiveAddressIdentifiersAndIrqOnly) {
  const sPciDevices record = Parse("0010\t80861234\t0b");
  EXPECT_EQ(record.bus, 0);
  EXPECT_EQ(record.device, 2);
  EXPECT_EQ(record.function, 0);
  EXPECT_EQ(record.vendorId, 0x8086);
  EXPECT_EQ(record.deviceId, 0x1234);
  EXPECT_EQ(record.irq, 0x0B);
  EXPECT_EQ(record.baseAddress, kNone);
  EXPECT_EQ(record.regionSize, kNone);
}

TEST(DeviceLine, FirstColumnHoldsBusDeviceAndFunction) {
  const sPciDevices record = Parse("ff0f\t80861234\t0");
  EXPECT_EQ(record.bus, 0xFF);
  EXPECT_EQ(record.device, 1);
  EXPECT_EQ(record.function, 7);
}

TEST(DeviceLine, HighestDeviceNumber) {
  const sPciDevices record = Parse("3afe\t80861234\t0");
  EXPECT_EQ(record.bus, 0x3A);
  EXPECT_EQ(record.device, 31);
  EXPECT_EQ(record.function, 6);
}

TEST(DeviceLine, VendorZeroIsDropped) { EXPECT_TRUE(IsDropped("0010\t0000ffff\t0b")); }

TEST(DeviceLine, VendorThatIsNotHexadecimalIsDropped) {
  EXPECT_TRUE(IsDropped("0010\tvendor\t0b"));
  EXPECT_TRUE(IsDropped("0010\t 80861234\t0b")) << "blanks are skipped in region columns only";
}

TEST(DeviceLine, DeviceZeroIsKept) {
  const sPciDevices record = Parse("0010\t80860000\t0b");
  EXPECT_EQ(record.vendorId, 0x8086);
  EXPECT_EQ(record.deviceId, 0);
}

TEST(DeviceLine, FewerThanThreeColumnsAreDropped) {
  EXPECT_TRUE(IsDropped(""));
  EXPECT_TRUE(IsDropped("\t\t\t"));
  EXPECT_TRUE(IsDropped("0010"));
  EXPECT_TRUE(IsDropped("0010\t80861234"));
  EXPECT_TRUE(IsDropped("0010 80861234 0b")) << "blanks do not separate columns";
}

TEST(DeviceLine, RunsOfTabsGiveNoEmptyColumns) {
  const sPciDevices record = Parse("\t0010\t\t80861234\t\t\tb");
  EXPECT_EQ(record.device, 2);
  EXPECT_EQ(record.vendorId, 0x8086);
  EXPECT_EQ(record.irq, 0x0B);
}

TEST(DeviceLine, EightColumnsGiveNoBaseAddresses) {
  EXPECT_EQ(Parse(LineWithColumns(5)).baseAddress, kNone);
}

TEST(DeviceLine, NineToFifteenColumnsGiveBaseAddressesAndNoSizes) {
  for (int count = 6; count <= 12; ++count) {
    const sPciDevices record = Parse(LineWithColumns(count));
    EXPECT_EQ(record.baseAddress, (Regions{0x11, 0x12, 0x13, 0x14, 0x15, 0x16})) << count;
    EXPECT_EQ(record.regionSize, kNone) << count;
  }
}

TEST(DeviceLine, SixteenColumnsGiveSizesBehindTheRomColumn) {
  for (int count = 13; count <= 15; ++count) {
    const sPciDevices record = Parse(LineWithColumns(count));
    EXPECT_EQ(record.baseAddress, (Regions{0x11, 0x12, 0x13, 0x14, 0x15, 0x16})) << count;
    EXPECT_EQ(record.regionSize, (Regions{0x18, 0x19, 0x20, 0x21, 0x22, 0x23})) << count;
  }
}

TEST(DeviceLine, LineAsTheKernelWritesIt) {
  const sPciDevices record = Parse(
      "00fa\t80868d02\t1b\t            f071\t            f061\t            f051\t"
      "            f041\t            f021\t        f7e3b000\t               0\t"
      "               8\t               4\t               8\t               4\t"
      "              20\t             800\t           10000\tahci");
  EXPECT_EQ(record.device, 31);
  EXPECT_EQ(record.function, 2);
  EXPECT_EQ(record.deviceId, 0x8D02);
  EXPECT_EQ(record.irq, 0x1B);
  EXPECT_EQ(record.baseAddress, (Regions{0xF071, 0xF061, 0xF051, 0xF041, 0xF021, 0xF7E3B000}));
  EXPECT_EQ(record.regionSize, (Regions{8, 4, 8, 4, 0x20, 0x800}));
}

TEST(DeviceLine, RegionColumnIsReadBehindItsBlanks) {
  EXPECT_EQ(BaseAddress("   f7e0000c"), 0xF7E0000CU);
  EXPECT_EQ(BaseAddress("f7e0000c   "), 0xF7E0000CU);
}

TEST(DeviceLine, OnlyTheFirstNumberOfARegionColumnCounts) {
  EXPECT_EQ(BaseAddress(" 10 20"), 0x10U);
}

TEST(DeviceLine, RegionColumnsAgreeWithTheirFirstPieceOnAnyText) {
  std::mt19937 random(1);
  constexpr char kCharacters[] = "   0123456789abcdefABCDEFxX+-,g";
  for (int round = 0; round < 20000; ++round) {
    std::string column = " ";
    for (std::size_t length = random() % 18; length > 0; --length) {
      column += kCharacters[random() % (sizeof kCharacters - 1)];
    }
    std::istringstream pieces(column);
    std::string first;
    pieces >> first;
    ASSERT_EQ(BaseAddress(column), ExtractDecimalDataToHex<unsigned int>(first)) << column;
  }
}

TEST(DeviceLine, RegionColumnOfBlanksIsZero) { EXPECT_EQ(BaseAddress("   "), 0U); }

TEST(DeviceLine, LargestThirtyTwoBitNumberFits) {
  EXPECT_EQ(BaseAddress("ffffffff"), 0xFFFFFFFFU);
  EXPECT_EQ(BaseAddress("FFFFFFFE"), 0xFFFFFFFEU);
}

TEST(DeviceLine, RegionWiderThanThirtyTwoBitsIsTheLargestNumber) {
  EXPECT_EQ(BaseAddress("100000000"), 0xFFFFFFFFU);
  EXPECT_EQ(BaseAddress("383ffff0000c"), 0xFFFFFFFFU);
}

TEST(DeviceLine, AddressAndIrqWiderThanSixteenBitsAreTheLargestNumber) {
  const sPciDevices record = Parse("10000\t80861234\t1ffff");
  EXPECT_EQ(record.bus, 0xFF);
  EXPECT_EQ(record.device, 31);
  EXPECT_EQ(record.function, 7);
  EXPECT_EQ(record.irq, 0xFFFF);
}

TEST(DeviceLine, IdentifiersWiderThanThirtyTwoBitsAreTheLargestNumber) {
  const sPciDevices record = Parse("0010\t180861234\tb");
  EXPECT_EQ(record.vendorId, 0xFFFF);
  EXPECT_EQ(record.deviceId, 0xFFFF);
}

TEST(DeviceLine, NumbersEndAtTheFirstOtherCharacter) {
  EXPECT_EQ(BaseAddress("12x4"), 0x12U);
  EXPECT_EQ(BaseAddress("none"), 0U);
}

TEST(DeviceLine, ShortAndPrefixedNumbersAreAccepted) {
  const sPciDevices record = Parse("8\t0x80861234\t0xB");
  EXPECT_EQ(record.bus, 0);
  EXPECT_EQ(record.device, 1);
  EXPECT_EQ(record.vendorId, 0x8086);
  EXPECT_EQ(record.irq, 0x0B);
}

TEST(DeviceLine, NothingOfTheFormerRecordStays) {
  sPciDevices record;
  record.irq = 9;
  record.baseAddress.fill(1);
  record.regionSize.fill(2);
  record.configSpace.fill(3);
  ASSERT_TRUE(ParseDeviceLine("0010\t80861234\t0", &record));
  EXPECT_EQ(record.irq, 0);
  EXPECT_EQ(record.baseAddress, kNone);
  EXPECT_EQ(record.regionSize, kNone);
  EXPECT_EQ(record.configSpace, (std::array<std::uint8_t, 256>{}));
}
