// SPDX-License-Identifier: Apache-2.0
#include "host/instance_diff/diff_words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

TCIMValue Word(unsigned short number) { return TCIMValue(number); }

TCIMValue Array(TCIMValue::TCIMType::ECIMType type, TCIMValue::TArray elements) {
  const auto count = static_cast<std::uint32_t>(elements.size());
  return TCIMValue(TCIMValue::TCIMType(type), count, std::move(elements));
}

TCIMValue Lines(const std::vector<std::string>& lines) {
  return Array(TCIMValue::TCIMType::kString, TCIMValue::TArray(lines.begin(), lines.end()));
}

TEST(DiffWords, DescribeWellKnownProperties) {
  EXPECT_EQ(ChangeText("VendorID", Word(0x8086), Word(0x10DE)), "vendor 8086 -> 10de");
  EXPECT_EQ(ChangeText("CurrentUsage", Word(4), Word(3)), "now empty: usage In use -> Available");
  EXPECT_EQ(ChangeText("CurrentUsage", Word(3), Word(4)),
            "no longer empty: usage Available -> In use");
  EXPECT_EQ(ChangeText("CurrentUsage", Word(2), Word(4)), "usage Unknown -> In use");
  EXPECT_EQ(ChangeText("Location", TCIMValue("PCI Bus  1, device   0, function  0"),
                       TCIMValue("elsewhere")),
            "address 01:00.0 -> \"elsewhere\"");
  EXPECT_EQ(ChangeText("MaxDataWidth", Word(13), TCIMValue()), "slot width x16 -> (not set)");
  EXPECT_EQ(ChangeText("ConnectorType", Array(TCIMValue::TCIMType::kUint16, {Word(6), Word(6)}),
                       Array(TCIMValue::TCIMType::kUint16, {TCIMValue()})),
            "slot type [6, 6] -> [(not set)]");
}

TEST(DiffWords, ShowOtherPropertiesByName) {
  EXPECT_EQ(ChangeText("Shared", TCIMValue(true), TCIMValue(false)), "Shared: true -> false");
  EXPECT_EQ(ChangeText("Tag", TCIMValue("a\x1b"), TCIMValue()), "Tag: \"a?\" -> (not set)");
}

TEST(DiffWords, ShowTheFirstDifferenceOfListings) {
  EXPECT_EQ(ChangeText("RawResult", Lines({"a", "b"}), Lines({"a", "c", "d"})),
            "listing: 2 lines -> 3 lines; first difference at line 2: \"b\" -> \"c\"");
  EXPECT_EQ(ChangeText("RawResult", Lines({"a"}), Lines({"a", "b"})),
            "listing: 1 lines -> 2 lines; first difference at line 2: (end of listing) -> \"b\"");
  EXPECT_EQ(ChangeText("RawResult", Lines({"a"}), TCIMValue()), "listing: 1 lines -> (not set)");
}

}  // namespace
}  // namespace pciinfo
