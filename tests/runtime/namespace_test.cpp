// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/runtime/failure_of.h"
#include "tests/runtime/fan_repository.h"

namespace vtq {
namespace {

using NQZMVTQ20::TVTQException;

TEST(NamespaceTest, KnowsItsNameAndItsClassesInOrder) {
  const auto nameSpace = MakeFanNamespace();
  EXPECT_EQ(nameSpace->GetName({}), "root/cimv2");
  ASSERT_EQ(nameSpace->GetClasses().size(), 3U);
  EXPECT_EQ(nameSpace->GetClasses()[0]->GetSchema().name, "ACME_Fan");
  EXPECT_EQ(nameSpace->GetClasses()[2]->GetSchema().name, "ACME_Cools");
}

TEST(NamespaceTest, FindsAClassByItsExactName) {
  const auto nameSpace = MakeFanNamespace();
  EXPECT_EQ(nameSpace->GetClass("ACME_Pump", {})->GetName({}), "ACME_Pump");
  EXPECT_EQ(nameSpace->Find("ACME_Pump"), nameSpace->GetClasses()[1]);
  EXPECT_EQ(nameSpace->Find("acme_pump"), nullptr);
}

TEST(NamespaceTest, AnUnknownClassThrowsAndIsNamed) {
  const auto nameSpace = MakeFanNamespace();
  const Failure failure = FailureOf([&] { (void)nameSpace->GetClass("ACME_Belt", {}); });
  EXPECT_EQ(failure.text, "the namespace root/cimv2 has no class ACME_Belt");
  EXPECT_EQ(failure.code, NQZMVTQ20::TVTQStatusCode::kNotFound);
}

TEST(NamespaceTest, RefusesASecondClassOfOneName) {
  const auto nameSpace = MakeFanNamespace();
  EXPECT_THROW(nameSpace->Declare({"ACME_Fan", "", "", {}}), TVTQException);
  EXPECT_EQ(nameSpace->GetClasses().size(), 3U);
}

TEST(NamespaceTest, RefusesTwoPropertiesOfOneName) {
  const auto nameSpace = MakeFanNamespace();
  const NQZMVTQ20::TCIMValue::TCIMType text(NQZMVTQ20::TCIMValue::TCIMType::kString);
  const PropertySchema property{"ID", text, false, true, {}, ""};
  const Failure failure = FailureOf([&] {
    nameSpace->Declare({"ACME_Belt", "", "", {property, property}});
  });
  EXPECT_EQ(failure.text, "the class ACME_Belt declares ID twice");
  EXPECT_EQ(nameSpace->Find("ACME_Belt"), nullptr);
}

}  // namespace
}  // namespace vtq
