// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <limits>

#include "framework/exception.h"
#include "framework/qualifier_map.h"
#include "tests/runtime/failure_of.h"

namespace NQZMVTQ20 {
namespace {

using vtq::FailureOf;
using TCIMType = TCIMValue::TCIMType;

const TCIMType kString(TCIMType::kString);
const TCIMType kUint16(TCIMType::kUint16);

TEST(ValueTest, ADefaultValueIsNull) {
  const TCIMValue value;
  EXPECT_TRUE(value.IsNull());
  EXPECT_FALSE(value.IsArray());
  EXPECT_EQ(value.GetType().GetCode(), TCIMType::kNull);
}

TEST(ValueTest, ANullTextAndANullReferenceGiveTheNullValue) {
  EXPECT_TRUE(TCIMValue(static_cast<const char*>(nullptr)).IsNull());
  EXPECT_TRUE(TCIMValue(TCIMReference()).IsNull());
}

TEST(ValueTest, AnEmptyTextIsNotNull) {
  EXPECT_FALSE(TCIMValue("").IsNull());
  EXPECT_EQ(TCIMValue("").GetString(), "");
}

TEST(ValueTest, EveryConstructorGivesItsType) {
  const TCIMReference reference("root/cimv2", "ACME_Fan", {});
  const std::pair<TCIMValue, TCIMType::ECIMType> rows[] = {
      {TCIMValue(true), TCIMType::kBoolean},
      {TCIMValue(static_cast<unsigned char>(1)), TCIMType::kUint8},
      {TCIMValue(static_cast<signed char>(1)), TCIMType::kSint8},
      {TCIMValue(static_cast<unsigned short>(1)), TCIMType::kUint16},
      {TCIMValue(static_cast<short>(1)), TCIMType::kSint16},
      {TCIMValue(1U), TCIMType::kUint32},
      {TCIMValue(1), TCIMType::kSint32},
      {TCIMValue(1UL), TCIMType::kUint64},
      {TCIMValue(1L), TCIMType::kSint64},
      {TCIMValue(1.0F), TCIMType::kReal32},
      {TCIMValue(1.0), TCIMType::kReal64},
      {TCIMValue("a"), TCIMType::kString},
      {TCIMValue(std::string("a")), TCIMType::kString},
      {TCIMValue::DateTime("20240102030405.000000+060"), TCIMType::kDateTime},
      {TCIMValue(reference), TCIMType::kReference},
  };
  for (const auto& [value, type] : rows) {
    EXPECT_EQ(value.GetType().GetCode(), type) << value.GetType().GetName();
    EXPECT_FALSE(value.IsNull());
    EXPECT_FALSE(value.IsArray());
  }
}

TEST(ValueTest, TypesHaveTheirCimNames) {
  EXPECT_STREQ(TCIMType(TCIMType::kNull).GetName(), "null");
  EXPECT_STREQ(TCIMType(TCIMType::kBoolean).GetName(), "boolean");
  EXPECT_STREQ(TCIMType(TCIMType::kSint8).GetName(), "sint8");
  EXPECT_STREQ(TCIMType(TCIMType::kUint64).GetName(), "uint64");
  EXPECT_STREQ(TCIMType(TCIMType::kReal32).GetName(), "real32");
  EXPECT_STREQ(TCIMType(TCIMType::kDateTime).GetName(), "datetime");
  EXPECT_STREQ(TCIMType(TCIMType::kReference).GetName(), "reference");
}

TEST(ValueTest, IntegersConvertToEveryIntegerTypeThatHoldsThem) {
  const TCIMValue value(static_cast<unsigned char>(127));
  EXPECT_EQ(static_cast<signed char>(value), 127);
  EXPECT_EQ(static_cast<unsigned char>(value), 127);
  EXPECT_EQ(static_cast<short>(value), 127);
  EXPECT_EQ(static_cast<unsigned short>(value), 127);
  EXPECT_EQ(static_cast<int>(value), 127);
  EXPECT_EQ(static_cast<unsigned int>(value), 127U);
  EXPECT_EQ(static_cast<long>(value), 127);
  EXPECT_EQ(static_cast<unsigned long>(value), 127U);
}

TEST(ValueTest, IntegersKeepTheirExtremes) {
  constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
  constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(static_cast<std::uint64_t>(TCIMValue(kMost)), kMost);
  EXPECT_EQ(static_cast<std::int64_t>(TCIMValue(kLeast)), kLeast);
}

TEST(ValueTest, AnIntegerThatDoesNotFitThrowsAndNamesBoth) {
  const vtq::Failure failure = FailureOf([] { (void)static_cast<unsigned char>(TCIMValue(256)); });
  EXPECT_EQ(failure.text, "256 does not fit into uint8");
  EXPECT_THROW((void)static_cast<unsigned int>(TCIMValue(-1)), TVTQException);
  EXPECT_THROW((void)static_cast<signed char>(TCIMValue(128)), TVTQException);
  EXPECT_THROW((void)static_cast<long>(TCIMValue(std::numeric_limits<std::uint64_t>::max())),
               TVTQException);
}

TEST(ValueTest, ANullValueConvertsToNothing) {
  const TCIMValue null;
  EXPECT_THROW((void)static_cast<unsigned char>(null), TVTQException);
  EXPECT_THROW((void)static_cast<int>(null), TVTQException);
  EXPECT_THROW((void)static_cast<bool>(null), TVTQException);
  EXPECT_THROW((void)static_cast<double>(null), TVTQException);
  EXPECT_THROW((void)static_cast<std::string>(null), TVTQException);
  EXPECT_THROW((void)null.GetString(), TVTQException);
  EXPECT_THROW((void)null.GetReference(), TVTQException);
  EXPECT_THROW((void)null.GetArray(), TVTQException);
}

TEST(ValueTest, AConversionAcrossKindsThrows) {
  EXPECT_THROW((void)static_cast<int>(TCIMValue("1")), TVTQException);
  EXPECT_THROW((void)static_cast<int>(TCIMValue(true)), TVTQException);
  EXPECT_THROW((void)static_cast<int>(TCIMValue(1.0)), TVTQException);
  EXPECT_THROW((void)static_cast<bool>(TCIMValue(1)), TVTQException);
  EXPECT_THROW((void)static_cast<double>(TCIMValue(1)), TVTQException);
  EXPECT_THROW((void)static_cast<std::string>(TCIMValue(1)), TVTQException);
  EXPECT_EQ(FailureOf([] { (void)static_cast<int>(TCIMValue("1")); }).text,
            "a value of type string cannot be read as sint32");
}

TEST(ValueTest, BooleansAndRealsConvert) {
  EXPECT_TRUE(static_cast<bool>(TCIMValue(true)));
  EXPECT_FALSE(static_cast<bool>(TCIMValue(false)));
  EXPECT_EQ(static_cast<double>(TCIMValue(0.5F)), 0.5);
  EXPECT_EQ(static_cast<double>(TCIMValue(0.25)), 0.25);
}

TEST(ValueTest, TextsKeepEveryByte) {
  const std::string text("a\0b\xff\n", 5);
  EXPECT_EQ(TCIMValue(text).GetString(), text);
  EXPECT_EQ(static_cast<std::string>(TCIMValue(text)), text);
}

TEST(ValueTest, AReferenceConvertsToItsPath) {
  const TCIMReference reference("root/cimv2", "ACME_Fan", {{"ID", TCIMValue("x")}});
  const TCIMValue value(reference);
  EXPECT_EQ(static_cast<std::string>(value), "/root/cimv2:ACME_Fan.ID=\"x\"");
  EXPECT_EQ(value.GetReference(), reference);
  EXPECT_THROW((void)value.GetString(), TVTQException);
}

TEST(ValueTest, ADateTimeHasTwentyFiveCharacters) {
  const std::string text = "20240102030405.000000+060";
  EXPECT_EQ(TCIMValue::DateTime(text).GetString(), text);
  EXPECT_THROW((void)TCIMValue::DateTime(text.substr(1)), TVTQException);
  EXPECT_FALSE(TCIMValue::DateTime(text) == TCIMValue(text));
}

TEST(ValueTest, AnArrayHoldsItsElements) {
  const TCIMValue array(kString, 3, {TCIMValue("a"), TCIMValue(), TCIMValue("b")});
  EXPECT_TRUE(array.IsArray());
  EXPECT_FALSE(array.IsNull());
  EXPECT_EQ(array.GetType().GetCode(), TCIMType::kString);
  ASSERT_EQ(array.GetArray().size(), 3U);
  EXPECT_EQ(array.GetArray()[0].GetString(), "a");
  EXPECT_TRUE(array.GetArray()[1].IsNull());
  EXPECT_THROW((void)array.GetString(), TVTQException);
}

TEST(ValueTest, AnEmptyArrayIsNotNull) {
  const TCIMValue array(kUint16, 0, {});
  EXPECT_TRUE(array.IsArray());
  EXPECT_FALSE(array.IsNull());
  EXPECT_TRUE(array.GetArray().empty());
}

TEST(ValueTest, AWrongCountOrElementThrowsAndLeavesTheValue) {
  TCIMValue value("kept");
  EXPECT_THROW(value.Set(kString, 2, {TCIMValue("a")}), TVTQException);
  EXPECT_THROW(value.Set(kString, 0, {TCIMValue("a")}), TVTQException);
  EXPECT_THROW(value.Set(kString, 1, {TCIMValue(1)}), TVTQException);
  EXPECT_THROW(value.Set(kString, 1, {TCIMValue(kString, 0, {})}), TVTQException);
  EXPECT_EQ(value.GetString(), "kept");
}

TEST(ValueTest, CopiesOfAnArrayShareItsElements) {
  const TCIMValue array(kString, 1, {TCIMValue("a text that is too long to stand in the string")});
  const std::vector<TCIMValue> copies(2, array);
  EXPECT_EQ(&copies[0].GetArray(), &array.GetArray());
  EXPECT_EQ(copies[1].GetArray()[0].GetString().data(), array.GetArray()[0].GetString().data());
}

TEST(ValueTest, AnArrayTakesItsElementsOverWithoutACopy) {
  TCIMValue::TArray elements(2, TCIMValue("a text that is too long to stand in the string"));
  const char* text = elements[1].GetString().data();
  TCIMValue value;
  value.Set(kString, 2, std::move(elements));
  EXPECT_EQ(value.GetArray()[1].GetString().data(), text);
}

TEST(ValueTest, AValueIsSmallerThanAString) { EXPECT_LT(sizeof(TCIMValue), sizeof(std::string)); }

TEST(ValueTest, TextsOfAnyLengthAreKeptCopiedAndMoved) {
  for (std::size_t size = 0; size < 40; ++size) {
    const std::string text(size, static_cast<char>('a' + size % 26));
    TCIMValue value(text);
    const TCIMValue copy(value);
    EXPECT_EQ(copy.GetString(), text);
    const TCIMValue moved(std::move(value));
    EXPECT_EQ(moved.GetString(), text);
    value = copy;
    EXPECT_EQ(value, moved);
    EXPECT_EQ(static_cast<std::string>(value), text);
    EXPECT_FALSE(value == TCIMValue(text + "x"));
    value = TCIMValue(text.c_str());
    EXPECT_EQ(value, copy);
  }
}

TEST(ValueTest, EqualityAsksForTypeShapeAndContent) {
  EXPECT_EQ(TCIMValue(1), TCIMValue(1));
  EXPECT_FALSE(TCIMValue(1) == TCIMValue(2));
  EXPECT_FALSE(TCIMValue(1) == TCIMValue(1U));
  EXPECT_EQ(TCIMValue(), TCIMValue());
  EXPECT_FALSE(TCIMValue() == TCIMValue(""));
  const TCIMValue one(kString, 1, {TCIMValue("a")});
  EXPECT_EQ(one, TCIMValue(kString, 1, {TCIMValue("a")}));
  EXPECT_FALSE(one == TCIMValue(kString, 1, {TCIMValue("b")}));
  EXPECT_FALSE(one == TCIMValue("a"));
  EXPECT_FALSE(TCIMValue(kString, 0, {}) == TCIMValue(kUint16, 0, {}));
}

}  // namespace
}  // namespace NQZMVTQ20
