// SPDX-License-Identifier: Apache-2.0
#include "host/capture/redact_vpd.h"

#include <gtest/gtest.h>

#include <numeric>

namespace pciinfo {
namespace {

std::string VpdSection(unsigned char tag, const std::string& data) {
  return std::string{static_cast<char>(tag), static_cast<char>(data.size()), '\0'} + data;
}

std::string VpdField(const std::string& keyword, const std::string& value) {
  return keyword + static_cast<char>(value.size()) + value;
}

std::string RedactedVpd(std::string bytes) {
  RedactVitalProductData(bytes);
  return bytes;
}

int SumOf(const std::string& bytes) {
  return std::accumulate(bytes.begin(), bytes.end(), 0,
                         [](int sum, unsigned char byte) { return sum + byte; }) %
         256;
}

TEST(RedactVitalProductData, BlanksWhatIdentifiesTheCard) {
  const std::string name = VpdSection(0x82, "Adapter");
  const auto card = [&name](const std::string& serial, const std::string& vendor) {
    return name + VpdSection(0x90, VpdField("PN", "AB-1") + VpdField("SN", serial) +
                                       VpdField("V3", vendor));
  };
  EXPECT_EQ(RedactedVpd(card("12345", "\x01\xFF") + "\x78"), card("XXXXX", "XX") + "\x78");
}

TEST(RedactVitalProductData, KeepsTheChecksumAsItWas) {
  const std::string name = VpdSection(0x82, "Adapter");
  for (const char checksum : {'\0', '\x17'}) {
    const std::string card =
        name + VpdSection(0x90, VpdField("SN", "12345") + VpdField("RV", std::string(1, checksum)));
    const std::string redacted = RedactedVpd(card);
    EXPECT_NE(redacted, card);
    EXPECT_EQ(SumOf(redacted), SumOf(card));
  }
}

TEST(RedactVitalProductData, KeepsEachOfSeveralChecksums) {
  const std::string once =
      VpdSection(0x90, VpdField("SN", "12345") + VpdField("RV", std::string(1, '\x17')));
  const std::string redacted = RedactedVpd(once + once);
  EXPECT_EQ(SumOf(redacted.substr(0, once.size())), SumOf(once));
  EXPECT_EQ(SumOf(redacted), SumOf(once + once));
}

TEST(RedactVitalProductData, BlanksWritableFieldsToo) {
  EXPECT_EQ(RedactedVpd(VpdSection(0x91, VpdField("YA", "asset")) + "\x78"),
            VpdSection(0x91, VpdField("YA", "XXXXX")) + "\x78");
}

TEST(RedactVitalProductData, ClearsWhatItCannotDecode) {
  EXPECT_EQ(RedactedVpd("SECRET"), std::string(6, '\0'));
  EXPECT_EQ(RedactedVpd("\x78SECRET"), "\x78" + std::string(6, '\0'));
  const std::string broken = VpdSection(0x90, VpdField("PN", "1") + "SN\x09" + "SECRET");
  EXPECT_EQ(RedactedVpd(broken), VpdSection(0x90, VpdField("PN", "1") + std::string(9, '\0')));
  EXPECT_EQ(RedactedVpd(""), "");
  EXPECT_EQ(RedactedVpd(std::string("\x90\xFF\x7F", 3) + "SN\x03" + "ABC"),
            std::string("\x90\xFF\x7F", 3) + "SN\x03" + "XXX")
      << "a section that is cut short";
}

}  // namespace
}  // namespace pciinfo
