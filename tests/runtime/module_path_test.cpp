// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>

#include "framework/os_specific.h"

namespace NQZMVTQ20 {
namespace {

namespace fs = std::filesystem;

int somethingOfThisProgram = 0;

TEST(ModulePathTest, GivesTheDirectoryOfALibraryWithASlash) {
  const auto function = reinterpret_cast<const void*>(&GetModulePathLin);
  const std::string directory = GetModulePathLin(function);
  EXPECT_TRUE(directory.ends_with('/'));
  EXPECT_TRUE(fs::equivalent(directory, TEST_LIBRARY_DIRECTORY)) << directory;
}

TEST(ModulePathTest, GivesTheDirectoryOfTheProgram) {
  const fs::path program = fs::read_symlink("/proc/self/exe");
  EXPECT_EQ(GetModulePathLin(&somethingOfThisProgram), program.parent_path().string() + "/");
}

TEST(ModulePathTest, IsEmptyForAnAddressOfNoFile) {
  const int onTheStack = 0;
  EXPECT_EQ(GetModulePathLin(&onTheStack), "");
  EXPECT_EQ(GetModulePathLin(nullptr), "");
}

}  // namespace
}  // namespace NQZMVTQ20
