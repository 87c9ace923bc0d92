// SPDX-License-Identifier: Apache-2.0
#include "host/model/address.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

TEST(Address, LocationIsReadAsDecimalNumbers) {
  const auto address = ParseLocation("PCI Bus  0, device  31, function  3");
  ASSERT_TRUE(address.has_value());
  EXPECT_EQ(FormatAddress(*address), "00:1f.3");
}

TEST(Address, PaddingIsOptional) {
  EXPECT_EQ(FormatAddress(*ParseLocation("PCI Bus 255, device  10, function  7")), "ff:0a.7");
  EXPECT_EQ(FormatAddress(*ParseLocation("PCI Bus 1, device 2, function 3")), "01:02.3");
}

class NoLocation : public testing::TestWithParam<const char*> {};

TEST_P(NoLocation, GivesNoAddress) { EXPECT_FALSE(ParseLocation(GetParam()).has_value()); }

INSTANTIATE_TEST_SUITE_P(
    Address, NoLocation,
    testing::Values("", "PCI Bus ", "PCI Bus  x, device   0, function  0",
                    "PCI Bus 256, device   0, function  0", "PCI Bus  0, device  32, function  0",
                    "PCI Bus  0, device   0, function  8", "PCI Bus  0, device   0",
                    "PCI Bus  0, device   0, function  0 ", "PCI Bus -1, device   0, function  0",
                    "PCI Bus 99999999999, device   0, function  0", "SystemBoard1"));

TEST(Address, OrderIsBusThenDeviceThenFunction) {
  EXPECT_LT((PciAddress{0, 31, 7}), (PciAddress{1, 0, 0}));
  EXPECT_LT((PciAddress{0, 1, 7}), (PciAddress{0, 2, 0}));
  EXPECT_LT((PciAddress{0, 1, 0}), (PciAddress{0, 1, 1}));
}

TEST(WrittenAddress, MayBeSpelledInSeveralWays) {
  for (const char* text :
       {"0a:1f.3", "0A:1F.3", "a:1f.3", "0000:0a:1f.3", "PCI Bus 10, device  31, function  3"}) {
    const auto written = ParseAddress(text);
    ASSERT_TRUE(written.has_value()) << text;
    EXPECT_EQ(written->address, (PciAddress{10, 31, 3})) << text;
  }
  EXPECT_EQ(ParseAddress("10000:00:00.0")->domain, 0x10000U);
  EXPECT_EQ(ParseAddress("0000:0a:1f.3")->domain, 0U);
  EXPECT_EQ(ParseAddress("0a:1f.3")->domain, std::nullopt);
}

TEST(DomainAddress, IsReadAndWrittenWithItsDomain) {
  const auto address = ParseDomainAddress("10000:0a:1f.3");
  ASSERT_TRUE(address.has_value());
  EXPECT_EQ(*address, (DomainAddress{0x10000, {10, 31, 3}}));
  EXPECT_EQ(FormatAddress(*address), "10000:0a:1f.3");
  EXPECT_EQ(FormatAddress(DomainAddress{0, {10, 31, 3}}), "0000:0a:1f.3");
  EXPECT_FALSE(ParseDomainAddress("0a:1f.3").has_value());
  EXPECT_FALSE(ParseDomainAddress("nonsense").has_value());
}

TEST(WrittenAddress, OtherTextsAreRejected) {
  for (const char* text : {"", "1", "00:00", "00.0", ":00.0", "00:.0", "00:00.", "100:00.0",
                           "00:20.0", "00:00.8", "x:00.0", "00:00.0 ", " 00:00.0", "1:2:3:4.5",
                           ":00:00.0", "ffffffff0:00:00.0", "-1:00.0"}) {
    EXPECT_FALSE(ParseAddress(text).has_value()) << text;
  }
}

TEST(HexNumber, MayHaveAPrefix) {
  EXPECT_EQ(ParseHex("8086", 0xFFFF), 0x8086U);
  EXPECT_EQ(ParseHex("0xABcd", 0xFFFF), 0xABCDU);
  for (const char* text : {"", "0x", "10000", "12g", "-1", "0x0x1"}) {
    EXPECT_FALSE(ParseHex(text, 0xFFFF).has_value()) << text;
  }
}

}  // namespace
}  // namespace pciinfo
