// SPDX-License-Identifier: Apache-2.0

#include "host/process/caller_rights.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace pciinfo {
namespace {

constexpr uid_t kRoot = 0;
constexpr uid_t kUser = 1000;

CallerRights Rights(const ProcessRights& rights,
                    const std::map<std::string, const char*>& environment = {}) {
  return RightsOfCaller(rights, [&environment](const char* name) -> const char* {
    const auto found = environment.find(name);
    return found == environment.end() ? nullptr : found->second;
  });
}

TEST(CallerRights, AreTheSameForAnOrdinaryUserAndForRoot) {
  EXPECT_EQ(Rights({false, kUser, kUser, false}), CallerRights::kSame);
  EXPECT_EQ(Rights({false, kRoot, kRoot, true}), CallerRights::kSame);
}

TEST(CallerRights, AreFewerWhereTheProgramFileGivesRights) {
  const auto fewer = CallerRights::kFewerAndOwnEnvironment;
  EXPECT_EQ(Rights({true, kUser, kUser, true}), fewer);
  EXPECT_EQ(Rights({false, kUser, kRoot, true}), fewer);
  EXPECT_EQ(Rights({true, kRoot, kRoot, true}, {{"SUDO_UID", "1000"}}), fewer);
}

TEST(CallerRights, AreFewerWhereSomethingElseGaveCapabilities) {
  EXPECT_EQ(Rights({false, kUser, kUser, true}), CallerRights::kFewer);
}

TEST(CallerRights, AreFewerUnderToolsThatChangeTheUser) {
  const ProcessRights root{false, kRoot, kRoot, true};
  EXPECT_EQ(Rights(root, {{"SUDO_UID", "1000"}}), CallerRights::kFewer);
  EXPECT_EQ(Rights(root, {{"SUDO_UID", "no number"}}), CallerRights::kFewer);
  EXPECT_EQ(Rights(root, {{"PKEXEC_UID", "1000"}}), CallerRights::kFewer);
  EXPECT_EQ(Rights(root, {{"DOAS_USER", "somebody"}}), CallerRights::kFewer);
  EXPECT_EQ(Rights({false, 1001, 1001, false}, {{"SUDO_UID", "1000"}}), CallerRights::kFewer);
}

TEST(CallerRights, AreTheSameForAUserWhoChangesToTheSameUser) {
  EXPECT_EQ(Rights({false, kRoot, kRoot, true}, {{"SUDO_UID", "0"}}), CallerRights::kSame);
}

}  // namespace
}  // namespace pciinfo
