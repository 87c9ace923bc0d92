// SPDX-License-Identifier: Apache-2.0
#include "host/store/machine_matching.h"

#include <gtest/gtest.h>

using namespace pciinfo;

namespace {

constexpr const char* kUuid = "4c4c4544-0042-3510-8054-b4c04f4d3132";
constexpr const char* kOtherUuid = "4c4c4544-0042-3510-8054-b4c04f4d3199";
constexpr const char* kId = "0123456789abcdef0123456789abcdef";
constexpr const char* kOtherId = "fedcba9876543210fedcba9876543210";

bool AreOne(const MachineNames& told, const MachineNames& known) {
  return ChooseMachine(told, {{"1", known, "2024-05-01 12:00:00"}}) != nullptr;
}

}  // namespace

TEST(MachineMatching, TheUuidDecides) {
  EXPECT_TRUE(AreOne({"new", kUuid, ""}, {"old", kUuid, ""}));
  EXPECT_TRUE(AreOne({"new", kUuid, kId}, {"old", kUuid, kId}));
  EXPECT_FALSE(AreOne({"a", kUuid, kId}, {"a", kOtherUuid, kId}));
}

TEST(MachineMatching, ASystemThatWasInstalledAgainKeepsItsHistory) {
  EXPECT_TRUE(AreOne({"a", kUuid, kId}, {"a", kUuid, kOtherId}));
  EXPECT_TRUE(AreOne({"", kUuid, kId}, {"a", kUuid, kOtherId}));
}

TEST(MachineMatching, MachinesThatShareAUuidAreTwo) {
  EXPECT_FALSE(AreOne({"a", kUuid, kId}, {"b", kUuid, kOtherId}));
}

TEST(MachineMatching, TheMachineIdDecidesWithoutAUuid) {
  EXPECT_TRUE(AreOne({"new", "", kId}, {"old", "", kId}));
  EXPECT_TRUE(AreOne({"a", "", kId}, {"a", kUuid, kId}));
  EXPECT_FALSE(AreOne({"a", "", kId}, {"a", kUuid, kOtherId}));
}

TEST(MachineMatching, TheNameDecidesWithoutAnythingElse) {
  EXPECT_TRUE(AreOne({"a", "", ""}, {"a", "", ""}));
  EXPECT_TRUE(AreOne({"a", kUuid, kId}, {"a", "", ""}));
  EXPECT_TRUE(AreOne({"a", "", ""}, {"a", kUuid, kId}));
  EXPECT_FALSE(AreOne({"a", "", ""}, {"b", "", ""}));
  EXPECT_FALSE(AreOne({"a", kUuid, ""}, {"b", "", kId}));
}

TEST(MachineMatching, UnknownIdentifiersAreNotTheSame) {
  EXPECT_FALSE(AreOne({"", kUuid, ""}, {"", "", kId}));
}

TEST(MachineMatching, ChoosesTheMachineWithTheMostInCommon) {
  const std::vector<KnownMachine> known{{"by name", {"a", "", ""}, "2024-05-09 12:00:00"},
                                        {"by id", {"b", "", kId}, "2024-05-01 12:00:00"},
                                        {"older", {"c", "", ""}, "2024-05-01 12:00:00"},
                                        {"newer", {"c", "", ""}, "2024-05-02 12:00:00"}};
  EXPECT_EQ(ChooseMachine({"a", kUuid, kId}, known)->id, "by id");
  EXPECT_EQ(ChooseMachine({"c", kUuid, ""}, known)->id, "newer");
  EXPECT_EQ(ChooseMachine({"d", kUuid, ""}, known), nullptr);
}

TEST(MachineMatching, DefaultUuidsMeanNothing) {
  const auto uuidOf = [](const char* uuid) { return OnlyMeaningful({"a", uuid, ""}).systemUuid; };
  EXPECT_EQ(uuidOf("00000000-0000-0000-0000-000000000000"), "");
  EXPECT_EQ(uuidOf("FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"), "");
  EXPECT_EQ(uuidOf("03000200-0400-0500-0006-000700080009"), "");
  EXPECT_EQ(uuidOf("4C4C4544-0042-3510-8054-B4C04F4D3132"), kUuid);
}

TEST(MachineMatching, OnlyMachineIdsAreMachineIds) {
  const auto idOf = [](const char* id) { return OnlyMeaningful({"a", "", id}).machineId; };
  EXPECT_EQ(idOf("uninitialized"), "");
  EXPECT_EQ(idOf("00000000000000000000000000000000"), "");
  EXPECT_EQ(idOf(kId), kId);
}
