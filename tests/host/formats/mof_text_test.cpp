// SPDX-License-Identifier: Apache-2.0
#include "host/formats/mof_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;

TEST(MofText, QuotesBackslashesAndControlCharactersAreEscaped) {
  EXPECT_EQ(MofString("a\"b\\c'd"), R"("a\"b\\c'd")");
  EXPECT_EQ(MofString("\b\t\n\f\r"), R"("\b\t\n\f\r")");
  EXPECT_EQ(MofString(std::string("\0f\x01\x7f", 4)), "\"\\x0000f\\x0001\\x007f\"");
}

TEST(MofText, OtherCharactersAreUtf8) {
  EXPECT_EQ(MofString("caf\xc3\xa9 \xf0\x9f\x98\x80"), "\"caf\xc3\xa9 \xf0\x9f\x98\x80\"");
  EXPECT_EQ(MofString("caf\xe9"), "\"caf\xc3\xa9\"");
}

TEST(MofText, UnsafeCharactersAreEscapedAsUtf16) {
  EXPECT_EQ(MofString("\xc2\x85"), R"("\x0085")");
  EXPECT_EQ(MofString("\xe2\x80\xae"), R"("\x202e")");
  EXPECT_EQ(MofString("\xf3\xa0\x80\x81"), R"("\xdb40\xdc01")");
}

TEST(MofText, Scalars) {
  EXPECT_EQ(MofScalar(TCIMValue()), "NULL");
  EXPECT_EQ(MofScalar(TCIMValue(true)), "TRUE");
  EXPECT_EQ(MofScalar(TCIMValue(false)), "FALSE");
  EXPECT_EQ(MofScalar(TCIMValue(static_cast<std::uint8_t>(200))), "200");
  EXPECT_EQ(MofScalar(TCIMValue(std::numeric_limits<std::int64_t>::min())), "-9223372036854775808");
  EXPECT_EQ(MofScalar(TCIMValue(std::numeric_limits<std::uint64_t>::max())),
            "18446744073709551615");
  EXPECT_EQ(MofScalar(TCIMValue::DateTime("20240229123456.000000+060")),
            "\"20240229123456.000000+060\"");
}

TEST(MofText, RealNumbersHaveADecimalPoint) {
  EXPECT_EQ(MofScalar(TCIMValue(1.0)), "1.0");
  EXPECT_EQ(MofScalar(TCIMValue(0.25)), "0.25");
  EXPECT_EQ(MofScalar(TCIMValue(-1e300)), "-1.0e+300");
  EXPECT_EQ(MofScalar(TCIMValue(std::numeric_limits<double>::infinity())), "NULL");
  EXPECT_EQ(MofScalar(TCIMValue(std::numeric_limits<double>::quiet_NaN())), "NULL");
}

TEST(MofText, AReferenceIsTheStringOfItsPath) {
  const TCIMReference reference("root/cimv2", "C", {{"K", TCIMValue("v\\")}});
  EXPECT_EQ(MofScalar(TCIMValue(reference)), R"("/root/cimv2:C.K=\"v\\\\\"")");
}

}  // namespace
}  // namespace pciinfo
