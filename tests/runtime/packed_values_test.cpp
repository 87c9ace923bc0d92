// SPDX-License-Identifier: Apache-2.0
#include "runtime/packed_values.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace vtq {
namespace {

using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;
using Type = TCIMValue::TCIMType;
using Values = PackedValues::Values;

template <class Number>
void AddNumbers(Values& values) {
  using Limits = std::numeric_limits<Number>;
  for (const Number number : {Limits::lowest(), Number{0}, Number{1}, Number{63}, Number{64},
                              Number{127}, Limits::max()}) {
    values.emplace_back(number);
  }
}

TCIMValue Array(Type::ECIMType type, TCIMValue::TArray elements) {
  const auto count = static_cast<std::uint32_t>(elements.size());
  return {Type(type), count, std::move(elements)};
}

/// One value of each kind, and the first and last ones of each.
Values AllKinds() {
  Values values = {TCIMValue(true),
                   TCIMValue(false),
                   TCIMValue(0.1F),
                   TCIMValue(-0.1),
                   TCIMValue(std::numeric_limits<double>::infinity()),
                   TCIMValue(""),
                   TCIMValue("0000:00:1f.3"),
                   TCIMValue(std::string("a\0b", 3)),
                   TCIMValue(std::string(4000, 'x')),
                   TCIMValue::DateTime("20261124000000.000000+000")};
  AddNumbers<unsigned char>(values);
  AddNumbers<signed char>(values);
  AddNumbers<unsigned short>(values);
  AddNumbers<short>(values);
  AddNumbers<unsigned int>(values);
  AddNumbers<int>(values);
  AddNumbers<unsigned long>(values);
  AddNumbers<long>(values);
  values.push_back(Array(Type::kString, {}));
  values.push_back(Array(Type::kString, {TCIMValue("one"), TCIMValue(), TCIMValue("three")}));
  values.push_back(Array(Type::kUint64, {TCIMValue(0xFE000000UL), TCIMValue(1UL)}));
  values.push_back(Array(Type::kBoolean, {TCIMValue(true), TCIMValue(false)}));
  values.push_back(Array(Type::kReference, {}));
  return values;
}

TEST(PackedValues, UnpackToWhatTheyWere) {
  for (const TCIMValue& value : AllKinds()) {
    const auto packed = PackedValues::Pack({value});
    ASSERT_TRUE(packed) << value.GetType().GetName();
    EXPECT_EQ(packed->Unpack(), Values{value}) << value.GetType().GetName();
  }
}

// What stands before a value is skipped by its kind.
TEST(PackedValues, AreFoundBehindValuesOfAllKinds) {
  for (const TCIMValue& value : AllKinds()) {
    const auto packed = PackedValues::Pack({value, TCIMValue("next")});
    ASSERT_TRUE(packed);
    EXPECT_EQ(packed->Find(0), value) << value.GetType().GetName();
    EXPECT_EQ(packed->Find(1), TCIMValue("next")) << value.GetType().GetName();
  }
}

TEST(PackedValues, KeepTheirPositions) {
  Values values(1000);
  const std::vector<std::size_t> set = {0, 1, 127, 128, 600, 998};
  for (const std::size_t position : set) values[position] = TCIMValue(position);
  const auto packed = PackedValues::Pack(values);
  ASSERT_TRUE(packed);
  EXPECT_EQ(packed->Unpack(), values);
  for (std::size_t position = 0; position <= values.size(); ++position) {
    EXPECT_EQ(packed->Find(position), position < values.size() ? values[position] : TCIMValue());
  }
}

TEST(PackedValues, OfNothing) {
  const auto packed = PackedValues::Pack({});
  ASSERT_TRUE(packed);
  EXPECT_EQ(packed->Unpack(), Values());
  EXPECT_TRUE(packed->Find(0).IsNull());
}

TEST(PackedValues, AreRefusedWhereTheyNeedMoreThan4096Bytes) {
  // Before the text are the number of values, its distance, its type and its length; then the end.
  const auto packs = [](std::size_t length) {
    return PackedValues::Pack({TCIMValue(std::string(length, 'x'))}).has_value();
  };
  EXPECT_TRUE(packs(4096 - 6));
  EXPECT_FALSE(packs(4096 - 5));
  EXPECT_FALSE(packs(4096));
  EXPECT_FALSE(packs(1 << 20));
  EXPECT_FALSE(PackedValues::Pack(
      {Array(Type::kUint8, Values(5000, TCIMValue(static_cast<unsigned char>(1))))}));
  EXPECT_FALSE(PackedValues::Pack(Values(2000, TCIMValue(true))));
}

TEST(PackedValues, AreRefusedWhereOneIsAReference) {
  const TCIMValue reference(TCIMReference("root/cimv2", "ACME_Fan", {{"ID", TCIMValue("a")}}));
  EXPECT_FALSE(PackedValues::Pack({TCIMValue(1), reference, TCIMValue(2)}));
  EXPECT_FALSE(PackedValues::Pack({Array(Type::kReference, {reference})}));
}

}  // namespace
}  // namespace vtq
