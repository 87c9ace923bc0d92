// SPDX-License-Identifier: Apache-2.0
#include "host/model/machine_ids.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/runtime/smbios_bytes.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

/// A system structure: four string numbers, then the UUID.
vtq::SmBiosBytes SystemStructure(const vtq::SmBiosBytes& uuid) {
  vtq::SmBiosBytes fields = {1, 0, 0, 0};
  fields.insert(fields.end(), uuid.begin(), uuid.end());
  return vtq::MakeStructure(1, fields, {"Maker"});
}

const vtq::SmBiosBytes kUuid = {0x44, 0x45, 0x4C, 0x4C, 0x35, 0x00, 0x10, 0x4D,
                                0x80, 0x52, 0xB3, 0xC0, 0x4F, 0x4C, 0x31, 0x32};
constexpr const char* kLowestFirst = "4c4c4544-0035-4d10-8052-b3c04f4c3132";

std::string UuidIn(const vtq::SmBiosBytes& bytes, int major = 3, int minor = 0) {
  vtq::SmBiosTable table;
  table.entryPoint.majorVersion = major;
  table.entryPoint.minorVersion = minor;
  table.entryPoint.tableLength = bytes.size();
  table.bytes = bytes;
  return ParseSystemUuid(table);
}

TEST(SystemUuid, HasItsFirstNumbersLowestByteFirstSinceVersion26) {
  EXPECT_EQ(UuidIn(SystemStructure(kUuid)), kLowestFirst);
  EXPECT_EQ(UuidIn(SystemStructure(kUuid), 2, 6), kLowestFirst);
  EXPECT_EQ(UuidIn(SystemStructure(kUuid), 2, 5), "44454c4c-3500-104d-8052-b3c04f4c3132");
}

TEST(SystemUuid, ThatTellsNoMachineFromOthersIsUnknown) {
  EXPECT_EQ(UuidIn(SystemStructure(vtq::SmBiosBytes(16, 0))), "");
  EXPECT_EQ(UuidIn(SystemStructure(vtq::SmBiosBytes(16, 0xFF))), "");
  EXPECT_EQ(UuidIn(SystemStructure({0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0, 7, 0, 8, 0, 9})), "");
}

TEST(SystemUuid, IsUnknownWithoutARoomForIt) {
  EXPECT_EQ(UuidIn({}), "");
  EXPECT_EQ(UuidIn(vtq::MakeStructure(2, {1}, {"Board"})), "");
  EXPECT_EQ(UuidIn(vtq::MakeStructure(1, {1, 0, 0, 0}, {"Maker"})), "");
  EXPECT_EQ(UuidIn(SystemStructure(vtq::SmBiosBytes(15, 7))), "");
}

TEST(SystemUuid, IsThatOfTheFirstSystem) {
  EXPECT_EQ(
      UuidIn(vtq::Joined({SystemStructure(kUuid), SystemStructure(vtq::SmBiosBytes(16, 0x11))})),
      kLowestFirst);
}

TEST(MachineIds, ComeFromTheFilesOfTheMachine) {
  const vtq::TemporaryDirectory root;
  EXPECT_EQ(ReadMachineIds(root.GetPath()).systemUuid, "");
  EXPECT_EQ(ReadMachineIds(root.GetPath()).machineId, "");
  std::filesystem::create_directories(root.GetPath() + "/sys/class/dmi/id");
  std::filesystem::create_directories(root.GetPath() + "/etc");
  root.Write("sys/class/dmi/id/product_uuid", "4C4C4544-0035-4D10-8052-B3C04F4C3132\n");
  root.Write("etc/machine-id", "0123456789abcdef0123456789abcdef\n");
  EXPECT_EQ(ReadMachineIds(root.GetPath()).systemUuid, kLowestFirst);
  EXPECT_EQ(ReadMachineIds(root.GetPath()).machineId, "0123456789abcdef0123456789abcdef");
  root.Write("sys/class/dmi/id/product_uuid", "FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF\n");
  root.Write("etc/machine-id", "uninitialized\n");
  EXPECT_EQ(ReadMachineIds(root.GetPath()).systemUuid, "");
  EXPECT_EQ(ReadMachineIds(root.GetPath()).machineId, "");
}

TEST(MachineIds, HaveAForm) {
  EXPECT_TRUE(IsUuid(kLowestFirst));
  EXPECT_FALSE(IsUuid("4c4c4544-0035-4d10-8052-b3c04f4c313"));
  EXPECT_FALSE(IsUuid("4c4c454400035-4d10-8052-b3c04f4c3132"));
  EXPECT_FALSE(IsUuid("4C4C4544-0035-4d10-8052-b3c04f4c3132"));
  EXPECT_FALSE(IsMachineId("00000000000000000000000000000000"));
  EXPECT_FALSE(IsMachineId("0123456789ABCDEF0123456789abcdef"));
}

}  // namespace
}  // namespace pciinfo
