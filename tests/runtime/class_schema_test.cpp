// SPDX-License-Identifier: Apache-2.0
#include "runtime/class_schema.h"

#include <gtest/gtest.h>

namespace vtq {
namespace {

using TCIMType = NQZMVTQ20::TCIMValue::TCIMType;

PropertySchema Reference(const std::string& name, std::vector<std::string> targets) {
  return {name, TCIMType(TCIMType::kReference), false, true, std::move(targets), ""};
}

TEST(ClassSchemaTest, AClassWithoutReferencesJoinsNothing) {
  const ClassSchema schema{"A", "", "", {{"ID", TCIMType(TCIMType::kString), false, true, {}, ""}}};
  EXPECT_TRUE(JoinedClasses(schema).empty());
}

TEST(ClassSchemaTest, JoinedClassesStandOnceInTheOrderOfDeclaration) {
  const ClassSchema schema{
      "A", "", "", {Reference("Antecedent", {"Z", "B"}), Reference("Dependent", {"B", "C", "Z"})}};
  EXPECT_EQ(JoinedClasses(schema), (std::vector<std::string>{"Z", "B", "C"}));
}

}  // namespace
}  // namespace vtq
