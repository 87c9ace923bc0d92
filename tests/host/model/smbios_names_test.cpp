// SPDX-License-Identifier: Apache-2.0
#include "host/model/smbios_names.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/fakes/pci_schema.h"

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

TEST(SmbiosNames, Lengths) {
  EXPECT_EQ(SlotLengthText(3), "Short length");
  EXPECT_EQ(SlotLengthText(6), "3.5\" drive form factor");
}

TEST(SmbiosNames, TheClassFileHasTheSameNames) {
  const std::map<std::string, std::string (*)(unsigned)> texts = {
      {"ConnectorType", &ConnectorTypeText},
      {"MaxDataWidth", &SlotWidthText},
      {"CurrentUsage", &SlotUsageText},
      {"SlotLength", &SlotLengthText}};
  std::map<std::string, std::size_t> counts;
  for (const vtq::ClassSchema& schema : PciSchema()) {
    for (const vtq::PropertySchema& property : schema.properties) {
      const auto text = texts.find(property.name);
      if (text == texts.end()) continue;
      for (const vtq::NamedValue& value : property.values) {
        if (value.meaning == "Reserved") continue;  // of the DMTF schema, not of SMBIOS
        EXPECT_EQ(text->second(value.value), value.meaning) << property.name;
        ++counts[property.name];
      }
    }
  }
  const std::map<std::string, std::size_t> expected = {
      {"ConnectorType", 79}, {"MaxDataWidth", 14}, {"CurrentUsage", 5}, {"SlotLength", 6}};
  EXPECT_EQ(counts, expected);
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
