// SPDX-License-Identifier: Apache-2.0
#include "plugin/values.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "tests/fakes/host_locale.h"

using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQStatusCode;

TEST(DataToString, NullPointerIsEmpty) {
  EXPECT_EQ(dataToString<const char*>(nullptr), "");
  EXPECT_EQ(dataToString<char*>(nullptr), "");
}

TEST(DataToString, PointersGiveTheirText) {
  char text[] = "text";
  EXPECT_EQ(dataToString<const char*>("a text"), "a text");
  EXPECT_EQ(dataToString<char*>(text), "text");
}

TEST(DataToString, MinusFiveIsWrittenWithItsSign) { EXPECT_EQ(dataToString<int>(-5), "-5"); }

TEST(DataToString, LargestUnsignedShortHasFiveDigits) {
  EXPECT_EQ(dataToString<unsigned short>(65535), "65535");
}

TEST(DataToString, StringIsUnchanged) {
  EXPECT_EQ(dataToString<std::string>(std::string("a\t b\0c", 6)), std::string("a\t b\0c", 6));
}

TEST(DataToString, StatusCodeGivesItsNumber) {
  EXPECT_EQ(dataToString<TVTQStatusCode::EVTQStatusCode>(TVTQStatusCode::kFailure), "3");
}

TEST(DataToString, NumbersAreWrittenAlikeInEveryLocaleOfTheHost) {
  const GroupingLocale locale(',');
  EXPECT_EQ(dataToString<unsigned short>(65535), "65535");
  EXPECT_EQ(dataToString<int>(-1234567), "-1234567");
  EXPECT_EQ(dataToString(static_cast<TVTQStatusCode::EVTQStatusCode>(1000)), "1000");
}

TEST(ExtractDecimalDataToHex, ReadsAlikeInEveryLocaleOfTheHost) {
  const GroupingLocale locale(',');
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned int>("1,fff"), 1U);
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned int>("0X1,fff"), 1U);
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned short>("ffff"), 0xFFFF);
}

TEST(ExtractDecimalDataToHex, EmptyTextIsZero) {
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned short>(""), 0);
}

TEST(ExtractDecimalDataToHex, ReadsHexadecimal) {
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned short>("10"), 16);
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned int>("8086abcd"), 0x8086abcdU);
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned int>("8086ABCD"), 0x8086abcdU);
}

TEST(ExtractDecimalDataToHex, LargestValueFits) {
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned short>("ffff"), 0xFFFF);
}

TEST(ExtractDecimalDataToHex, OutOfRangeIsTheMaximum) {
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned short>("1ffff"), 0xFFFF);
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned int>("4000000004"), 0xFFFFFFFFU);
}

TEST(ExtractDecimalDataToHex, LeadingBlankIsZero) {
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned short>(" 10"), 0);
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned short>("\t10"), 0);
}

TEST(ExtractDecimalDataToHex, StopsAtTheFirstOtherCharacter) {
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned short>("1f 22"), 31);
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned short>("g1"), 0);
}

TEST(ExtractDecimalDataToHex, AcceptsAHexadecimalPrefix) {
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned short>("0x1f"), 31);
  EXPECT_EQ(ExtractDecimalDataToHex<unsigned short>("0X1F"), 31);
}

// Reads a hexadecimal number with a stream; the function must return the same.
template <class T>
T ReadFromStream(const std::string& text) {
  std::stringstream stream(text);
  stream.flags(std::ios_base::hex);
  T value = 0;
  stream >> value;
  return value;
}

TEST(ExtractDecimalDataToHex, AgreesWithAStreamOnAnyText) {
  std::mt19937 random(1);
  constexpr char kCharacters[] = "0123456789abcdefABCDEF0x0X+-. ,g\t";
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t length = random() % 12; length > 0; --length) {
      text += kCharacters[random() % (sizeof kCharacters - 1)];
    }
    ASSERT_EQ(ExtractDecimalDataToHex<unsigned short>(text), ReadFromStream<unsigned short>(text))
        << text;
    ASSERT_EQ(ExtractDecimalDataToHex<unsigned int>(text), ReadFromStream<unsigned int>(text))
        << text;
  }
}

TEST(ReadHex, ReadsAPartOfATextAsThatPartAlone) {
  constexpr std::string_view kLine = "00f8\t80868d02\tFFFF1\t0x1f g";
  EXPECT_EQ(ReadHex<unsigned short>(kLine.substr(0, 4)), 0xF8);
  EXPECT_EQ(ReadHex<unsigned int>(kLine.substr(5, 8)), 0x80868D02U);
  EXPECT_EQ(ReadHex<unsigned short>(kLine.substr(14, 4)), 0xFFFF);
  EXPECT_EQ(ReadHex<unsigned int>(kLine.substr(14, 5)), 0xFFFF1U);
  EXPECT_EQ(ReadHex<unsigned short>(kLine.substr(20)), 0x1F);
  EXPECT_EQ(ReadHex<unsigned short>(kLine.substr(20, 3)), 1);
  EXPECT_EQ(ReadHex<unsigned short>(kLine.substr(20, 2)), ReadFromStream<unsigned short>("0x"));
  EXPECT_EQ(ReadHex<unsigned short>(kLine.substr(20, 0)), 0);
}

TEST(InsertProperty, FirstValueOfANameWins) {
  TPropertyMap properties;
  InsertProperty(&properties, "Name", TCIMValue("first"));
  InsertProperty(&properties, "Name", TCIMValue("second"));
  ASSERT_EQ(properties.size(), 1U);
  EXPECT_EQ(properties.at("Name").GetString(), "first");
}

TEST(InsertProperty, NullValueAddsNothing) {
  TPropertyMap properties;
  InsertProperty(&properties, "Name", TCIMValue());
  EXPECT_TRUE(properties.empty());
}

TEST(InsertProperty, AgreesWithAPlainSearchInAnyOrder) {
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    TPropertyMap properties;
    TPropertyMap plain;
    for (unsigned number = 0; number < 40; ++number) {
      const std::string name = "Name" + std::to_string(random() % 30);
      if (plain.find(name) == plain.end()) plain[name] = TCIMValue(number);
      InsertProperty(&properties, name, TCIMValue(number));
    }
    ASSERT_EQ(properties, plain);
  }
}
