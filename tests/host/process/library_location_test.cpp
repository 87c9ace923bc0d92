// SPDX-License-Identifier: Apache-2.0
#include "host/process/library_location.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <stdexcept>

namespace pciinfo {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

TEST(LibraryLocation, LooksBesideTheProgramThenInTheLibDirectoryThenWhereItIsInstalled) {
  const std::vector<std::string> places = LibraryPlaces("/opt/x/bin", "libpciinfo-extras.so");
  ASSERT_EQ(places.size(), 3U);
  EXPECT_EQ(places[0], "/opt/x/bin/libpciinfo-extras.so");
  EXPECT_EQ(places[1], "/opt/x/lib/libpciinfo-extras.so");
  EXPECT_THAT(places[2],
              AllOf(StartsWith("/opt/x/lib"), EndsWith("/pciinfo/libpciinfo-extras.so")));
}

TEST(LibraryLocation, PluginsAreInTheLibDirectoryOrWhereTheyAreInstalled) {
  const std::vector<std::string> places = PluginDirectories("/opt/x/bin");
  ASSERT_FALSE(places.empty());
  EXPECT_EQ(places[0], "/opt/x/lib/pciinfo/plugins");
  EXPECT_EQ(std::set<std::string>(places.begin(), places.end()).size(), places.size());
  EXPECT_THAT(places.back(), AllOf(StartsWith("/opt/x/lib"), EndsWith("/pciinfo/plugins")));
}

TEST(LibraryLocation, TakesTheFirstPlaceThatExists) {
  EXPECT_EQ(FirstExisting({"/nowhere/a", "/dev/null", "/dev/zero"}, ""), "/dev/null");
}

TEST(LibraryLocation, SaysWhereItLookedInVain) {
  try {
    FirstExisting({"/nowhere/a", "/nowhere/b"}, "look elsewhere");
    FAIL() << "no error";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("/nowhere/a, /nowhere/b exists; look elsewhere"));
  }
}

TEST(LibraryLocation, ProgramDirectoryIsThatOfTheRunningProgram) {
  EXPECT_TRUE(std::filesystem::exists(ProgramDirectory() + "/host_tests"));
}

}  // namespace
}  // namespace pciinfo
