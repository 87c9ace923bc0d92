// SPDX-License-Identifier: Apache-2.0
#include "runtime/bios_id.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "tests/runtime/smbios_bytes.h"
#include "tests/runtime/temporary_directory.h"

namespace vtq {
namespace {

std::string VersionIn(const std::vector<SmBiosBytes>& structures) {
  const SmBiosBytes bytes = Joined(structures);
  return BiosVersion({{2, 7, bytes.size(), 0, false}, bytes});
}

TEST(BiosIdTest, IsTheStringWhoseNumberStandsAtOffset5) {
  EXPECT_EQ(VersionIn({MakeStructure(1, {1, 1}, {"no"}),
                       MakeStructure(0, {1, 2, 0}, {"Acme", " 1.0 ", "x"})}),
            " 1.0 ");
  EXPECT_EQ(VersionIn({MakeStructure(0, {2, 1}, {"1.1", "Acme"})}), "1.1");
  EXPECT_EQ(VersionIn({MakeStructure(0, {1, 3}, {"a", "b", "last"})}), "last");
}

TEST(BiosIdTest, IsThatOfTheFirstStructure) {
  EXPECT_EQ(VersionIn({MakeStructure(0, {0, 1}, {"one"}), MakeStructure(0, {0, 1}, {"two"})}),
            "one");
}

TEST(BiosIdTest, IsEmptyWhenAnythingIsMissing) {
  EXPECT_EQ(VersionIn({}), "");
  EXPECT_EQ(VersionIn({MakeStructure(1, {1, 1}, {"no"})}), "");
  EXPECT_EQ(VersionIn({MakeStructure(0, {1}, {"short"})}), "");
  EXPECT_EQ(VersionIn({MakeStructure(0, {1, 0}, {"unnumbered"})}), "");
  EXPECT_EQ(VersionIn({MakeStructure(0, {1, 3}, {"a", "b"})}), "");
  EXPECT_EQ(VersionIn({MakeStructure(0, {1, 255})}), "");
}

TEST(BiosIdTest, IsEmptyWhereThereAreNoTables) {
  const TemporaryDirectory directory;
  EXPECT_EQ(BiosIdFrom(directory.GetPath()), "");
  directory.Write("smbios_entry_point", "no anchor");
  EXPECT_EQ(BiosIdFrom(directory.GetPath()), "");
}

TEST(BiosIdTest, ReadingThatFailsIsAFailure) {
  const TemporaryDirectory directory;
  std::filesystem::create_directory(directory.GetPath() + "/smbios_entry_point");
  EXPECT_THROW(BiosIdFrom(directory.GetPath()), NQZMVTQ20::TVTQException);
}

TEST(BiosIdTest, IsWhatTheKernelKnowsOfThisMachine) {
  const std::string kernelFile = "/sys/class/dmi/id/bios_version";
  const bool isReadable = ::access("/sys/firmware/dmi/tables/DMI", R_OK) == 0;
  std::string expected;
  if (isReadable) expected = NQZMVTQ20::TOSSpecific::CaptureFile(kernelFile);
  if (expected.ends_with('\n')) expected.pop_back();
  EXPECT_EQ(NQZMVTQ20::TOSSpecific::GetBiosID(), expected);
}

}  // namespace
}  // namespace vtq
