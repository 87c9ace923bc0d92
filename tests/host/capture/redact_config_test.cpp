// SPDX-License-Identifier: Apache-2.0
#include "host/capture/redact_config.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace pciinfo {
namespace {

void PutWord(std::string& bytes, std::size_t offset, unsigned word) {
  for (std::size_t i = 0; i < 4; ++i) bytes[offset + i] = static_cast<char>(word >> 8 * i & 0xFF);
}

/// A space with an error-reporting capability at 100 and a serial number at 140.
std::string ConfigSpace(char serialByte) {
  std::string bytes(4096, '\x11');
  PutWord(bytes, 0x100, 0x14010001);
  PutWord(bytes, 0x140, 0x00010003);
  bytes.replace(0x144, 8, 8, serialByte);
  return bytes;
}

/// Formats bytes like "lspci -xxxx" prints a function.
std::string HexListing(const std::string& title, const std::string& bytes) {
  std::string text = title + "\n";
  for (std::size_t offset = 0; offset < bytes.size(); ++offset) {
    if (offset % 16 == 0) text += fmt::format("{:02x}:", offset);
    text += fmt::format(" {:02x}", static_cast<unsigned char>(bytes[offset]));
    if (offset % 16 == 15) text += "\n";
  }
  return text + "\n";
}

std::string RedactedSpace(std::string bytes) {
  RedactConfigSpace(bytes);
  return bytes;
}

std::string RedactedHex(std::string listing) {
  RedactHexListing(listing);
  return listing;
}

std::string RedactedVerbose(std::string listing) {
  RedactVerboseListing(listing);
  return listing;
}

TEST(RedactConfigSpace, ClearsTheSerialNumberOnly) {
  EXPECT_EQ(RedactedSpace(ConfigSpace('\xAB')), ConfigSpace('\0'));
}

TEST(RedactConfigSpace, LeavesShortSpacesAlone) {
  for (const std::size_t length : {0U, 64U, 256U, 259U}) {
    const std::string bytes = ConfigSpace('\xAB').substr(0, length);
    EXPECT_EQ(RedactedSpace(bytes), bytes);
  }
}

TEST(RedactConfigSpace, ATruncatedNumberIsCleared) {
  for (std::size_t length = 0x140; length < 0x150; ++length) {
    EXPECT_EQ(RedactedSpace(ConfigSpace('\xAB').substr(0, length)),
              ConfigSpace('\0').substr(0, length));
  }
}

TEST(RedactConfigSpace, ACircularCapabilityListEnds) {
  std::string bytes = ConfigSpace('\xAB');
  PutWord(bytes, 0x140, 0x10010003);
  std::string expected = bytes;
  expected.replace(0x144, 8, 8, '\0');
  EXPECT_EQ(RedactedSpace(bytes), expected);
}

TEST(RedactHexListing, ClearsTheSerialNumberOfEveryFunction) {
  const std::string other(256, '\x22');
  EXPECT_EQ(RedactedHex(HexListing("00:1f.2 SATA", ConfigSpace('\xAB')) +
                        HexListing("10000:01:00.0 NVMe", ConfigSpace('\xCD')) +
                        HexListing("00:00.0 Bridge", other)),
            HexListing("00:1f.2 SATA", ConfigSpace('\0')) +
                HexListing("10000:01:00.0 NVMe", ConfigSpace('\0')) +
                HexListing("00:00.0 Bridge", other));
}

TEST(RedactHexListing, TakesAListingThatIsCutAnywhere) {
  const std::string whole = HexListing("00:1f.2 SATA", ConfigSpace('\xAB')).substr(0, 1500);
  const std::string redacted = HexListing("00:1f.2 SATA", ConfigSpace('\0')).substr(0, 1500);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(RedactedHex(whole.substr(0, length)).size(), length);
  }
  EXPECT_EQ(RedactedHex(whole), redacted);
}

TEST(RedactVerboseListing, BlanksDeviceSerialNumbers) {
  EXPECT_EQ(RedactedVerbose("\tCapabilities: [140 v1] Device Serial Number 00-1b-21-ff\n\tNext: 1"),
            "\tCapabilities: [140 v1] Device Serial Number XX-XX-XX-XX\n\tNext: 1");
}

TEST(RedactVerboseListing, BlanksVitalProductData) {
  EXPECT_EQ(RedactedVerbose("\t\t\t[PN] Part number: G61347-004\n"
                            "\t\t\t[SN] Serial number: 001B21 FFFF\n"
                            "\t\t\t[V0] Vendor specific: tag:7\n"
                            "\t\t\t[YA] Asset tag: N/A"),
            "\t\t\t[PN] Part number: G61347-004\n"
            "\t\t\t[SN] Serial number: XXXXXX XXXX\n"
            "\t\t\t[V0] Vendor specific: XXX:X\n"
            "\t\t\t[YA] Asset tag: XXX");
}

TEST(RedactVerboseListing, ChangesNothingElse) {
  const std::string listing =
      "00:02.0 VGA compatible controller: A (prog-if 00 [VGA controller])\n"
      "\tControl: I/O+ Mem+\n\n\tCapabilities: [40] Vital Product Data\n\t\t\t[SN]";
  EXPECT_EQ(RedactedVerbose(listing), listing);
}

}  // namespace
}  // namespace pciinfo
