// SPDX-License-Identifier: Apache-2.0
#include "host/model/machine_identity.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/runtime/smbios_bytes.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

vtq::SmBiosTable Table(const vtq::SmBiosBytes& bytes) {
  vtq::SmBiosTable table;
  table.entryPoint.tableLength = bytes.size();
  table.bytes = bytes;
  return table;
}

TEST(MachineIdentity, ComesFromTheFirstStructuresOfTheTable) {
  const MachineIdentity identity = ParseIdentity(Table(
      vtq::Joined({vtq::MakeStructure(0, {1, 2, 0, 0, 3}, {"Bios Maker", "1.2", "01/02/2003"}),
                   vtq::MakeStructure(1, {1, 2}, {"  Maker ", "Model\x01"}),
                   vtq::MakeStructure(2, {1, 2, 3}, {"Board Maker", "Board", "A01"}),
                   vtq::MakeStructure(2, {1, 2, 3}, {"Other", "Other", "Other"})})));
  EXPECT_EQ(identity.biosMaker, "Bios Maker");
  EXPECT_EQ(identity.biosVersion, "1.2");
  EXPECT_EQ(identity.biosDate, "01/02/2003");
  EXPECT_EQ(identity.maker, "Maker");
  EXPECT_EQ(identity.product, "Model?");
  EXPECT_EQ(identity.boardMaker, "Board Maker");
  EXPECT_EQ(identity.boardProduct, "Board");
  EXPECT_EQ(identity.boardVersion, "A01");
}

TEST(MachineIdentity, MissingFieldsAreEmpty) {
  const MachineIdentity identity = ParseIdentity(Table(
      vtq::Joined({vtq::MakeStructure(1, {1, 9}, {"Maker"}), vtq::MakeStructure(2, {0, 1}, {})})));
  EXPECT_EQ(identity.maker, "Maker");
  EXPECT_EQ(identity.product, "");
  EXPECT_EQ(identity.boardMaker, "");
  EXPECT_EQ(identity.boardProduct, "");
  EXPECT_EQ(identity.boardVersion, "");
  EXPECT_EQ(identity.biosMaker, "");
}

TEST(MachineIdentity, ComesFromTheKernelWhereTheTableCannotBeRead) {
  const vtq::TemporaryDirectory root;
  EXPECT_EQ(ReadIdentity(root.GetPath()).maker, "");
  std::filesystem::create_directories(root.GetPath() + "/sys/class/dmi/id");
  root.Write("sys/class/dmi/id/sys_vendor", "Kernel's Maker\n");
  EXPECT_EQ(ReadIdentity(root.GetPath()).maker, "Kernel's Maker");
  std::filesystem::create_directories(root.GetPath() + "/sys/firmware/dmi/tables");
  root.Write("sys/firmware/dmi/tables/smbios_entry_point", "broken");
  root.Write("sys/firmware/dmi/tables/DMI", "broken");
  EXPECT_EQ(ReadIdentity(root.GetPath()).maker, "Kernel's Maker");
}

}  // namespace
}  // namespace pciinfo
