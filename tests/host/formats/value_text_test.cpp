// SPDX-License-Identifier: Apache-2.0
#include "host/formats/value_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "framework/exception.h"
#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;

TEST(ValueText, IntegersOfBothSigns) {
  EXPECT_EQ(IntegerText(TCIMValue(std::numeric_limits<std::uint64_t>::max())),
            "18446744073709551615");
  EXPECT_EQ(IntegerText(TCIMValue(std::numeric_limits<std::int64_t>::min())),
            "-9223372036854775808");
  EXPECT_EQ(IntegerText(TCIMValue(static_cast<std::uint8_t>(65))), "65");
  EXPECT_THROW(IntegerText(TCIMValue("12")), TVTQException);
}

TEST(ValueText, ScalarsForPeople) {
  EXPECT_EQ(ScalarText(TCIMValue()), "");
  EXPECT_EQ(ScalarText(TCIMValue(true)), "true");
  EXPECT_EQ(ScalarText(TCIMValue(false)), "false");
  EXPECT_EQ(ScalarText(TCIMValue("text")), "text");
  EXPECT_EQ(ScalarText(TCIMValue(0.5)), "0.5");
  EXPECT_EQ(ScalarText(TCIMValue::DateTime("20240229123456.000000+060")),
            "20240229123456.000000+060");
}

TEST(ValueText, StringsDatetimesAndReferencesAreTexts) {
  EXPECT_TRUE(IsText(TCIMValue::TCIMType(TCIMValue::TCIMType::kString)));
  EXPECT_TRUE(IsText(TCIMValue::TCIMType(TCIMValue::TCIMType::kDateTime)));
  EXPECT_TRUE(IsText(TCIMValue::TCIMType(TCIMValue::TCIMType::kReference)));
  EXPECT_FALSE(IsText(TCIMValue::TCIMType(TCIMValue::TCIMType::kBoolean)));
  EXPECT_FALSE(IsText(TCIMValue::TCIMType(TCIMValue::TCIMType::kUint16)));
}

TEST(ValueText, RealNumbersHaveADecimalPoint) {
  EXPECT_EQ(RealText(TCIMValue(2.0)), "2.0");
  EXPECT_EQ(RealText(TCIMValue(0.1)), "0.1");
  EXPECT_EQ(RealText(TCIMValue(1e300)), "1.0e+300");
  EXPECT_THROW(RealText(TCIMValue("2")), TVTQException);
}

class PropertyText : public testing::Test {
 protected:
  std::shared_ptr<vtq::Namespace> repository_ = MakeFixedRepository();
  const std::vector<std::shared_ptr<vtq::Instance>>& slots_ =
      repository_->Find("QZMSG_SystemSlot")->GetInstances();
};

TEST_F(PropertyText, ReadsWhatIsSet) {
  EXPECT_EQ(TextOf(*slots_[0], "Tag"), "Tag 1");
  EXPECT_EQ(NumberOf(*slots_[0], "Number"), 7U);
  EXPECT_EQ(BooleanOf(*slots_[0], "SupportsHotPlug"), false);
}

TEST_F(PropertyText, OfAnArrayReadsTheFirstNumber) {
  EXPECT_EQ(NumberOf(*slots_[0], "ConnectorType"), 0xb6U);
}

TEST_F(PropertyText, UnsetIsEmpty) {
  EXPECT_EQ(TextOf(*slots_[2], "SlotDesignation"), "");
  EXPECT_FALSE(NumberOf(*slots_[0], "SlotLength").has_value());
  EXPECT_FALSE(NumberOf(*slots_[0], "VccMixedVoltageSupport").has_value());
  EXPECT_FALSE(BooleanOf(*slots_[0], "Shared").has_value());
}

TEST_F(PropertyText, UndeclaredPropertiesThrow) {
  EXPECT_THROW(TextOf(*slots_[0], "Color"), TVTQException);
}

}  // namespace
}  // namespace pciinfo
