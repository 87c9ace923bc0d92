// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <limits>

#include "framework/cim_reference.h"
#include "framework/cim_value.h"
#include "framework/exception.h"
#include "tests/runtime/failure_of.h"

namespace NQZMVTQ20 {
namespace {

TCIMReference Fan(const TCIMReference::TKeyMap& keys) {
  return TCIMReference("root/cimv2", "ACME_Fan", keys);
}

TEST(ReferenceTest, ADefaultReferenceIsNullAndEmpty) {
  const TCIMReference null;
  EXPECT_TRUE(null.IsNull());
  EXPECT_EQ(null.GetNamespace(), "");
  EXPECT_EQ(null.GetClassName(), "");
  EXPECT_TRUE(null.GetKeys().empty());
  EXPECT_EQ(null.ToString(), "");
}

TEST(ReferenceTest, AReferenceAnswersItsParts) {
  const TCIMReference fan = Fan({{"ID", TCIMValue("x")}});
  EXPECT_FALSE(fan.IsNull());
  EXPECT_EQ(fan.GetNamespace(), "root/cimv2");
  EXPECT_EQ(fan.GetClassName(), "ACME_Fan");
  EXPECT_EQ(fan.GetKeys().at("ID").GetString(), "x");
}

TEST(ReferenceTest, KeysStandInNameOrder) {
  EXPECT_EQ(Fan({{"b", TCIMValue("2")}, {"a", TCIMValue("1")}, {"C", TCIMValue("3")}}).ToString(),
            "/root/cimv2:ACME_Fan.C=\"3\",a=\"1\",b=\"2\"");
}

TEST(ReferenceTest, QuotesAndBackslashesAreEscapedAndNothingElse) {
  EXPECT_EQ(Fan({{"ID", TCIMValue("a\"b\\c,d=e\t\n/\xc3\xa4")}}).ToString(),
            "/root/cimv2:ACME_Fan.ID=\"a\\\"b\\\\c,d=e\t\n/\xc3\xa4\"");
}

TEST(ReferenceTest, NumbersAndBooleansStandWithoutQuotes) {
  EXPECT_EQ(Fan({{"a", TCIMValue(static_cast<unsigned char>(200))},
                 {"b", TCIMValue(-5)},
                 {"c", TCIMValue(std::numeric_limits<std::uint64_t>::max())},
                 {"d", TCIMValue(true)},
                 {"e", TCIMValue(false)}})
                .ToString(),
            "/root/cimv2:ACME_Fan.a=200,b=-5,c=18446744073709551615,d=TRUE,e=FALSE");
}

TEST(ReferenceTest, AReferenceKeyIsTheQuotedPathOfItsTarget) {
  const TCIMReference fan = Fan({{"ID", TCIMValue("x\\")}});
  const TCIMReference link("root/cimv2", "ACME_Cools", {{"Fan", TCIMValue(fan)}});
  EXPECT_EQ(link.ToString(),
            "/root/cimv2:ACME_Cools.Fan=\"/root/cimv2:ACME_Fan.ID=\\\"x\\\\\\\\\\\"\"");
}

TEST(ReferenceTest, AReferenceWithoutKeysIsThePathOfTheClass) {
  EXPECT_EQ(Fan({}).ToString(), "/root/cimv2:ACME_Fan");
  EXPECT_FALSE(Fan({}).IsNull());
}

TEST(ReferenceTest, NullsArraysAndRealsCannotBeKeys) {
  EXPECT_THROW(Fan({{"ID", TCIMValue()}}), TVTQException);
  EXPECT_THROW(Fan({{"ID", TCIMValue(1.5)}}), TVTQException);
  EXPECT_THROW(Fan({{"ID", TCIMValue(1.5F)}}), TVTQException);
  const TCIMValue array(TCIMValue::TCIMType(TCIMValue::TCIMType::kString), 0, {});
  const vtq::Failure failure = vtq::FailureOf([&array] { Fan({{"ID", array}}); });
  EXPECT_NE(failure.text.find("ACME_Fan.ID"), std::string::npos);
}

TEST(ReferenceTest, ReferencesAreEqualWhenTheirPathsAre) {
  EXPECT_EQ(Fan({{"ID", TCIMValue("x")}}), Fan({{"ID", TCIMValue("x")}}));
  EXPECT_FALSE(Fan({{"ID", TCIMValue("x")}}) == Fan({{"ID", TCIMValue("y")}}));
  EXPECT_FALSE(TCIMReference() == Fan({}));
  EXPECT_EQ(TCIMReference(), TCIMReference());
}

TEST(ReferenceTest, CopiesShareThePath) {
  const TCIMReference fan = Fan({{"ID", TCIMValue("x")}});
  TCIMReference copy;
  copy = fan;
  EXPECT_EQ(copy.ToString().data(), fan.ToString().data());
}

}  // namespace
}  // namespace NQZMVTQ20
