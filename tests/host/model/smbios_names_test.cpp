#include "host/model/smbios_names.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

TEST(SmbiosNames, ConnectorTypes) {
  EXPECT_EQ(ConnectorTypeText(0x06), "PCI");
  EXPECT_EQ(ConnectorTypeText(0x12), "PCI-X");
  EXPECT_EQ(ConnectorTypeText(0x17), "M.2 socket 3 (key M)");
  EXPECT_EQ(ConnectorTypeText(0xA5), "PCI Express");
  EXPECT_EQ(ConnectorTypeText(0xAA), "PCI Express x16");
  EXPECT_EQ(ConnectorTypeText(0xB0), "PCI Express 2 x16");
  EXPECT_EQ(ConnectorTypeText(0xB6), "PCI Express 3 x16");
  EXPECT_EQ(ConnectorTypeText(0xB8), "PCI Express 4");
  EXPECT_EQ(ConnectorTypeText(0xBD), "PCI Express 4 x16");
  EXPECT_EQ(ConnectorTypeText(0xC3), "PCI Express 5 x16");
  EXPECT_EQ(ConnectorTypeText(0xC4), "PCI Express 6 or later");
}

TEST(SmbiosNames, Widths) {
  EXPECT_EQ(SlotWidthText(0x05), "32 bit");
  EXPECT_EQ(SlotWidthText(0x08), "x1");
  EXPECT_EQ(SlotWidthText(0x0C), "x12");
  EXPECT_EQ(SlotWidthText(0x0E), "x32");
}

TEST(SmbiosNames, Usages) {
  EXPECT_EQ(SlotUsageText(1), "Other");
  EXPECT_EQ(SlotUsageText(2), "Unknown");
  EXPECT_EQ(SlotUsageText(3), "Available");
  EXPECT_EQ(SlotUsageText(4), "In use");
  EXPECT_EQ(SlotUsageText(5), "Unavailable");
}

TEST(SmbiosNames, TheListsHaveTheSameNames) {
  for (const vtq::NamedValue& type : ConnectorTypes()) {
    EXPECT_EQ(ConnectorTypeText(type.value), type.meaning);
  }
  for (const vtq::NamedValue& width : SlotWidths()) {
    EXPECT_EQ(SlotWidthText(width.value), width.meaning);
  }
  for (const vtq::NamedValue& usage : SlotUsages()) {
    EXPECT_EQ(SlotUsageText(usage.value), usage.meaning);
  }
  EXPECT_EQ(ConnectorTypes().size(), 79U);
  EXPECT_EQ(SlotWidths().size(), 14U);
  EXPECT_EQ(SlotUsages().size(), 5U);
  ASSERT_EQ(SlotLengths().size(), 6U);
  EXPECT_EQ(SlotLengths()[5].meaning, "3.5\" drive form factor");
}

TEST(SmbiosNames, CodesThatTheStandardDoesNotNameAreNumbers) {
  EXPECT_EQ(ConnectorTypeText(0xB7), "183");
  EXPECT_EQ(ConnectorTypeText(0), "0");
  EXPECT_EQ(SlotWidthText(0x0F), "15");
  EXPECT_EQ(SlotUsageText(0), "0");
  EXPECT_EQ(SlotUsageText(6), "6");
}

}  // namespace
}  // namespace pciinfo
