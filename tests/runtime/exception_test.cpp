// SPDX-License-Identifier: Apache-2.0
#include "framework/exception.h"

#include <gtest/gtest.h>

namespace NQZMVTQ20 {
namespace {

TEST(ExceptionTest, CarriesItsDescriptionAndCode) {
  const TVTQException failure("no fan turns", TVTQStatusCode::kNotFound);
  EXPECT_STREQ(failure.what(), "no fan turns");
  EXPECT_EQ(failure.GetStatusCode(), TVTQStatusCode::kNotFound);
}

TEST(ExceptionTest, IsAFailureWhereNoCodeIsGiven) {
  EXPECT_EQ(TVTQException("x").GetStatusCode(), TVTQStatusCode::kFailure);
}

TEST(ExceptionTest, IsCaughtAsAStandardException) {
  EXPECT_THROW(throw TVTQException("x"), std::runtime_error);
}

}  // namespace
}  // namespace NQZMVTQ20
