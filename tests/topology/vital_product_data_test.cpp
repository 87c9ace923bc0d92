// SPDX-License-Identifier: Apache-2.0
#include "topology/vital_product_data.h"

#include <gtest/gtest.h>

namespace topology {
namespace {

std::string Section(unsigned char tag, const std::string& data) {
  return std::string{static_cast<char>(tag), static_cast<char>(data.size()),
                     static_cast<char>(data.size() >> 8)} +
         data;
}

std::string Field(const std::string& keyword, const std::string& value) {
  return keyword + static_cast<char>(value.size()) + value;
}

/// Sections with a checksum that fits, and three reserved bytes behind it.
std::string WithChecksum(const std::string& name, const std::string& fields, int error = 0) {
  const std::string readOnly = fields + Field("RV", std::string(4, '\0'));
  std::string data = Section(0x82, name) + Section(0x90, readOnly);
  int sum = 0;
  for (const char byte : data) sum += static_cast<unsigned char>(byte);
  data[data.size() - 4] = static_cast<char>(error - sum);
  return data + '\x78';
}

const std::string kCard = WithChecksum(
    "Two-port adapter", Field("PN", "AB-1234 ") + Field("EC", "A2") +
                            Field("SN", std::string("X99\0\0", 5)) + Field("V0", "\x01\x7F\xC3"));

TEST(VitalProductData, HasANameAndFields) {
  const VitalProductData data = DecodeVitalProductData(kCard);
  EXPECT_EQ(data.name, "Two-port adapter");
  ASSERT_EQ(data.readOnly.size(), 4U);
  EXPECT_EQ(data.Find("PN"), "AB-1234");
  EXPECT_EQ(data.Find("SN"), "X99");
  EXPECT_EQ(data.Find("EC"), "A2");
  EXPECT_EQ(data.Find("V0"), "\\x01\\x7f\\xc3");
  EXPECT_EQ(data.Find("MN"), "");
  EXPECT_EQ(data.checksumRight, true);
  EXPECT_EQ(data.problem, "");
}

TEST(VitalProductData, TellsWhetherTheChecksumFits) {
  EXPECT_EQ(DecodeVitalProductData(WithChecksum("n", Field("PN", "1"), 1)).checksumRight, false);
  const std::string without = Section(0x90, Field("PN", "1")) + '\x78';
  EXPECT_FALSE(DecodeVitalProductData(without).checksumRight);
  const std::string empty = Section(0x90, Field("RV", "")) + '\x78';
  EXPECT_EQ(DecodeVitalProductData(empty).checksumRight, false);
}

TEST(VitalProductData, WalksOverWhatMayBeWritten) {
  const std::string data = Section(0x91, Field("YA", "tag")) + Section(0x82, "name") + '\x78';
  EXPECT_EQ(DecodeVitalProductData(data).name, "name");
  EXPECT_TRUE(DecodeVitalProductData(data).readOnly.empty());
}

TEST(VitalProductData, OfEveryShorterTextIsDecodedAsFarAsItGoes) {
  for (std::size_t size = 0; size < kCard.size(); ++size) {
    const VitalProductData data = DecodeVitalProductData(kCard.substr(0, size));
    EXPECT_NE(data.problem, "") << size;
    EXPECT_LE(data.readOnly.size(), 4U);
  }
  EXPECT_EQ(DecodeVitalProductData(kCard.substr(0, 40)).Find("PN"), "AB-1234");
}

TEST(VitalProductData, OfMemoryThatNobodyHasWrittenIsNone) {
  for (const char fill : {'\0', '\xFF'}) {
    const VitalProductData data = DecodeVitalProductData(std::string(64, fill));
    EXPECT_EQ(data.problem, "the data does not begin with a known tag");
  }
}

TEST(VitalProductData, AFieldEndsWithItsSection) {
  const std::string data = Section(0x90, std::string("PN\x05") + "1234") + "5\x78";
  EXPECT_EQ(DecodeVitalProductData(data).problem, "a field is longer than its section");
  EXPECT_TRUE(DecodeVitalProductData(data).readOnly.empty());
}

TEST(VitalProductData, NeedsNothingBehindTheEndTag) {
  const std::string more = kCard + std::string(100, 'x');
  std::size_t size = 0;
  for (int reads = 0; reads < 10; ++reads) {
    const std::size_t needed = NeededVitalProductData(more.substr(0, size));
    if (needed <= size) break;
    size = needed;
  }
  EXPECT_EQ(size, kCard.size());
  EXPECT_LE(NeededVitalProductData(std::string(8, '\xFF')), 8U) << "no such data: nothing more";
  EXPECT_EQ(NeededVitalProductData(std::string("\x90\xFF\xFF", 3)), 3U + 0xFFFF + 1);
}

}  // namespace
}  // namespace topology
