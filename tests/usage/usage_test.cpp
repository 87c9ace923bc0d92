// SPDX-License-Identifier: Apache-2.0
#include "usage/usage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/usage/made_usage.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

TEST(Usage, ReadsTheProgramsOptionsButHiddenOnes) {
  const UsageCommand program = MadeUsage().program;
  EXPECT_EQ(program.name, "water");
  EXPECT_THAT(OptionNames(program),
              ElementsAre("-h", "--help", "--version", "-c", "--can", "--tone"));
  EXPECT_THAT(OptionNames(program, true), ElementsAre("-c", "--can", "--tone"));
}

TEST(Usage, AFlagTakesNoValue) {
  const UsageOption dry = MadeUsage().commands[0].options[1];
  EXPECT_THAT(dry.names, ElementsAre("--dry"));
  EXPECT_EQ(dry.kind, ValueKind::kNothing);
  EXPECT_EQ(dry.valueName, "");
}

TEST(Usage, AnOptionTellsItsChoicesAndDefault) {
  const UsageOption colour = MadeUsage().commands[0].options[0];
  EXPECT_EQ(colour.kind, ValueKind::kChoice);
  EXPECT_EQ(colour.valueName, "COLOUR");
  EXPECT_EQ(colour.defaultText, "red");
  EXPECT_THAT(colour.choices, ElementsAre("red", "blue"));
  EXPECT_FALSE(colour.isRepeatable);
}

TEST(Usage, FilesAreToldByTheNameOfTheValue) {
  const Usage usage = MadeUsage();
  const UsageOption can = usage.program.options.at(2);
  EXPECT_EQ(can.kind, ValueKind::kFile);
  EXPECT_TRUE(can.isRepeatable);
  const UsageOption file = usage.commands[1].arguments.at(0);
  EXPECT_EQ(file.kind, ValueKind::kFile);
  EXPECT_TRUE(file.isRequired);
}

TEST(Usage, AClassIsOneOfTheClasses) {
  const Usage usage = MadeUsage();
  const UsageOption plants = usage.commands[0].arguments.at(0);
  EXPECT_EQ(plants.kind, ValueKind::kClass);
  EXPECT_TRUE(plants.isRepeatable);
  EXPECT_FALSE(plants.isRequired);
  EXPECT_THAT(ValuesOf(usage, plants), ElementsAre("Fern", "Moss"));
}

TEST(Usage, ValuesAreToldByTheirWord) {
  const Usage usage = MadeUsage();
  const UsageCommand& pot = usage.commands[2];
  EXPECT_EQ(pot.arguments.at(0).kind, ValueKind::kThing);
  ASSERT_EQ(pot.options.size(), 5U);
  EXPECT_EQ(pot.options[0].kind, ValueKind::kChoice);
  EXPECT_THAT(pot.options[0].choices, ElementsAre("up", "down"));
  EXPECT_EQ(pot.options[1].kind, ValueKind::kList);
  EXPECT_THAT(pot.options[1].choices, ElementsAre("leaf", "root"));
  EXPECT_EQ(pot.options[2].kind, ValueKind::kKeys);
  EXPECT_THAT(ValuesOf(usage, pot.options[2]), ElementsAre("size=", "place="));
}

TEST(Usage, ACodeIsOneOfTheCodes) {
  const Usage usage = MadeUsage();
  const UsageOption ignored = usage.commands[0].options.at(2);
  EXPECT_EQ(ignored.kind, ValueKind::kCode);
  EXPECT_THAT(ValuesOf(usage, ignored), ElementsAre("too-dry", "too-wet"));
}

TEST(Usage, ACommandHasThoseOptionsThatTheProgramHasNotOrMeansOtherwise) {
  const Usage usage = MadeUsage();
  ASSERT_EQ(usage.commands.size(), 3U);
  EXPECT_THAT(OptionNames(usage.commands[0]), ElementsAre("--colour", "--dry", "--ignore"));
  EXPECT_THAT(OptionNames(usage.commands[1]), IsEmpty());
  EXPECT_THAT(OptionNames(usage.commands[2]), IsSupersetOf({"--can", "--tone"}));
}

}  // namespace
}  // namespace pciinfo
