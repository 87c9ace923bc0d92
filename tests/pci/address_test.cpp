// SPDX-License-Identifier: Apache-2.0
#include "pci/address.h"

#include <gtest/gtest.h>

TEST(PciAddress, ListingKeyIsHexadecimalWithTwoDigitsForBusAndDevice) {
  EXPECT_EQ((PciAddress{0, 0x1f, 2}.ListingKey()), "00:1f.2");
  EXPECT_EQ((PciAddress{0x0a, 0, 7}.ListingKey()), "0a:00.7");
  EXPECT_EQ((PciAddress{0xff, 0x1f, 7}.ListingKey()), "ff:1f.7");
}

TEST(PciAddress, LegacyKeyIsDecimalAndPadded) {
  EXPECT_EQ((PciAddress{0, 31, 3}.LegacyKey()), " Bus  0, device  31, function  3");
  EXPECT_EQ((PciAddress{12, 4, 0}.LegacyKey()), " Bus 12, device   4, function  0");
}

TEST(PciAddress, LegacyKeyIsNeverCut) {
  EXPECT_EQ((PciAddress{255, 255, 255}.LegacyKey()), " Bus 255, device 255, function 255");
}

TEST(PciAddress, AddressWithDomain) {
  EXPECT_EQ((PciAddress{0x0a, 0x1f, 7}.WithDomain()), "0000:0a:1f.7");
  EXPECT_EQ((PciAddress{0, 0x1c, 0}.WithDomain()), "0000:00:1c.0");
}

TEST(PciAddress, AnyNumbersMakeWholeTexts) {
  EXPECT_EQ((PciAddress{255, 255, 255}.ListingKey()), "ff:ff.ff");
  EXPECT_EQ((PciAddress{255, 255, 255}.WithDomain()), "0000:ff:ff.ff");
}

TEST(PadDecimal, ShortNumbersAreRightAligned) {
  EXPECT_EQ(PadDecimal(5, 3), "  5");
  EXPECT_EQ(PadDecimal(0, 2), " 0");
  EXPECT_EQ(PadDecimal(-7, 3), " -7");
}

TEST(PadDecimal, LongNumbersAreNotCut) {
  EXPECT_EQ(PadDecimal(123, 2), "123");
  EXPECT_EQ(PadDecimal(12, 2), "12");
  EXPECT_EQ(PadDecimal(-2147483648, 2), "-2147483648");
}

TEST(PadDecimal, WidthZeroAddsNothing) { EXPECT_EQ(PadDecimal(0, 0), "0"); }

TEST(DeviceKeyFromAddress, NumbersBecomeDecimal) {
  EXPECT_EQ(DeviceKeyFromAddress("00:00.0"), "PCIBus0device0function0");
  EXPECT_EQ(DeviceKeyFromAddress("ff:1f.7"), "PCIBus255device31function7");
  EXPECT_EQ(DeviceKeyFromAddress("00:1f.2"), "PCIBus0device31function2");
  EXPECT_EQ(DeviceKeyFromAddress("3a:00.0"), "PCIBus58device0function0");
}

TEST(DeviceKeyFromAddress, LineEndBehindTheFunctionDoesNoHarm) {
  EXPECT_EQ(DeviceKeyFromAddress("02:00.1\n"), "PCIBus2device0function1");
}

TEST(DeviceKeyFromAddress, TextThatIsNoAddressGivesNoKey) {
  EXPECT_EQ(DeviceKeyFromAddress(""), "");
  EXPECT_EQ(DeviceKeyFromAddress("0200.1"), "");
  EXPECT_EQ(DeviceKeyFromAddress("02:001"), "");
  EXPECT_EQ(DeviceKeyFromAddress("02.00:1"), "");
}

TEST(DeviceKeyFromLocation, BlanksAndCommasAreRemoved) {
  EXPECT_EQ(DeviceKeyFromLocation("PCI Bus  0, device  31, function  2"),
            "PCIBus0device31function2");
  EXPECT_EQ(DeviceKeyFromLocation(" ,, ,"), "");
}

TEST(DeviceKeyFromLocation, EmptyTextStaysEmpty) { EXPECT_EQ(DeviceKeyFromLocation(""), ""); }

TEST(DeviceKeyFromLocation, TextWithoutBlanksAndCommasIsUnchanged) {
  EXPECT_EQ(DeviceKeyFromLocation("PCIBus0device31function2"), "PCIBus0device31function2");
}

TEST(DeviceKeyFromLocation, TabsAndLineEndsStay) {
  EXPECT_EQ(DeviceKeyFromLocation("a\t b\n,c"), "a\tb\nc");
}

TEST(DeviceKeys, AddressAndLocationOfEveryFunctionGiveTheSameKey) {
  for (unsigned number = 0; number <= 0xFFFF; ++number) {
    const PciAddress address{static_cast<std::uint8_t>(number >> 8),
                             static_cast<std::uint8_t>((number & 0xFF) >> 3),
                             static_cast<std::uint8_t>(number & 7)};
    ASSERT_EQ(DeviceKeyFromAddress(address.ListingKey()),
              DeviceKeyFromLocation("PCI" + address.LegacyKey()));
  }
}
