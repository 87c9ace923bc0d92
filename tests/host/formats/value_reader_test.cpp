// SPDX-License-Identifier: Apache-2.0
#include "host/formats/value_reader.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "host/formats/value_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;
using Type = TCIMValue::TCIMType;
using enum TCIMValue::TCIMType::ECIMType;

template <class Integer>
void ExpectRange(Type::ECIMType code) {
  using Limits = std::numeric_limits<Integer>;
  for (const Integer number : {Limits::min(), Limits::max(), Integer{0}, Integer{1}}) {
    const TCIMValue value(number);
    EXPECT_EQ(IntegerValue(Type(code), std::string_view(IntegerText(value))), value);
  }
  const std::string below = "-" + std::to_string(Limits::max()) + "0";
  const std::string above = std::to_string(Limits::max()) + "0";
  EXPECT_FALSE(IntegerValue(Type(code), std::string_view(below)));
  EXPECT_FALSE(IntegerValue(Type(code), std::string_view(above)));
}

TEST(ValueReader, ReadsExactlyTheRangeOfEachType) {
  ExpectRange<std::uint8_t>(kUint8);
  ExpectRange<std::int8_t>(kSint8);
  ExpectRange<std::uint16_t>(kUint16);
  ExpectRange<std::int16_t>(kSint16);
  ExpectRange<std::uint32_t>(kUint32);
  ExpectRange<std::int32_t>(kSint32);
  ExpectRange<std::uint64_t>(kUint64);
  ExpectRange<std::int64_t>(kSint64);
}

TEST(ValueReader, RefusesNumbersThatDoNotFit) {
  EXPECT_EQ(IntegerValue(Type(kUint8), std::uint64_t{255}), TCIMValue(std::uint8_t{255}));
  EXPECT_FALSE(IntegerValue(Type(kUint8), std::uint64_t{256}));
  EXPECT_EQ(IntegerValue(Type(kSint8), std::int64_t{-128}), TCIMValue(std::int8_t{-128}));
  EXPECT_FALSE(IntegerValue(Type(kUint64), std::int64_t{-1}));
  EXPECT_FALSE(IntegerValue(Type(kString), std::uint64_t{1}));
}

TEST(ValueReader, RefusesTextsThatAreNotJustANumber) {
  for (const char* text : {"", "-", "+1", " 1", "1 ", "0x1", "1.0", "1e3", "--1", "one"}) {
    EXPECT_FALSE(IntegerValue(Type(kSint32), std::string_view(text))) << text;
  }
}

}  // namespace
}  // namespace pciinfo
