#include "host/address.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

TEST(Address, LocationIsReadAsDecimalNumbers) {
  const auto address = ParseLocation("PCI Bus  0, device  31, function  3");
  ASSERT_TRUE(address.has_value());
  EXPECT_EQ(FormatAddress(*address), "00:1f.3");
}

TEST(Address, NumbersMayFillTheirColumns) {
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

}  // namespace
}  // namespace pciinfo
