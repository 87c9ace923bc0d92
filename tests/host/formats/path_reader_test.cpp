// SPDX-License-Identifier: Apache-2.0
#include "host/formats/path_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"
#include "tests/host/hostile_repository.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;

std::string PathFailure(const std::string& path) {
  try {
    return "no failure, but " + ReadPath(path, *MakeEmptyHostileRepository()).ToString();
  } catch (const PathError& error) {
    return error.what();
  }
}

void ExpectPathsReadBack(const vtq::Namespace& repository) {
  for (const auto& cimClass : repository.GetClasses()) {
    for (const auto& instance : cimClass->GetInstances()) {
      const NQZMVTQ20::TCIMReference path = instance->GetObjectReference({});
      const NQZMVTQ20::TCIMReference read = ReadPath(path.ToString(), repository);
      EXPECT_EQ(read, path);
      EXPECT_EQ(read.GetKeys(), path.GetKeys());
    }
  }
}

TEST(PathReader, ReadsThePathsOfAllInstances) {
  ExpectPathsReadBack(*MakeFixedRepository());
  ExpectPathsReadBack(*MakeHostileRepository());
}

TEST(PathReader, AcceptsKeysInAnyOrder) {
  const auto repository = MakeEmptyRepository();
  EXPECT_EQ(ReadPath(R"(/root/cimv2:QZMSG_SystemSlot.Tag="T",CreationClassName="C")", *repository)
                .ToString(),
            R"(/root/cimv2:QZMSG_SystemSlot.CreationClassName="C",Tag="T")");
}

TEST(PathReader, SaysWhatIsWrong) {
  EXPECT_THAT(PathFailure(""), HasSubstr("expected \"/root/cimv2:\""));
  EXPECT_THAT(PathFailure("/root/other:C"), HasSubstr("expected \"/root/cimv2:\""));
  EXPECT_THAT(PathFailure("/root/cimv2:C.a=1"), HasSubstr("unknown class \"C\""));
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Everything"), HasSubstr("the key Key of"));
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Everything.Lock=\"\""),
              HasSubstr("no key \"Lock\""));
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Everything.string=\"\""),
              HasSubstr("no key \"string\""));
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Everything.Key"), HasSubstr("expected \"=\""));
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Everything.Key=a"), HasSubstr("expected \"\"\""));
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Everything.Key=\"a"), HasSubstr("no closing quote"));
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Everything.Key=\"a\\"),
              HasSubstr("no closing quote"));
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Everything.Key=\"a\"b"),
              HasSubstr("expected \",\""));
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Everything.Key=\"a\",Key=\"a\""),
              HasSubstr("Key occurs twice"));
}

TEST(PathReader, ChecksTheTypesOfKeys) {
  const std::string target = R"(Target="/root/cimv2:Hostile_Everything.Key=\"a\"")";
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Link.Flag=TRUE,Count=-7," + target),
              HasSubstr("no failure"));
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Link.Flag=yes"),
              HasSubstr("Flag: yes is not of type boolean"));
  EXPECT_THAT(PathFailure("/root/cimv2:Hostile_Link.Count=32768"),
              HasSubstr("Count: 32768 is not of type sint16"));
  EXPECT_THAT(PathFailure(R"(/root/cimv2:Hostile_Link.Target="nowhere")"),
              HasSubstr("expected \"/root/cimv2:\" at \"nowhere\""));
}

}  // namespace
}  // namespace pciinfo
