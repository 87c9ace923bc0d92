#include "host/inventory_view.h"

#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

TEST(InventoryView, ListsEveryFunctionByAddress) {
  OutputToText output;
  WriteInventory(output.Get(), *MakeFixedRepository());
  EXPECT_EQ(output.Text(),
            "ADDRESS  KIND    ID         DESCRIPTION\n"
            "00:00.0  bridge  8086:191f  Host bridge: Intel\n"
            "00:01.0  bridge  8086:1901  PCI bridge: Intel\n"
            "00:02.0  device  8086:1912  Display controller with a description that is so "
            "long that no line of a hundred columns could ever hold all of it\n"
            "00:1f.3  device  8086:a170  Audio device: Fa\xc3\xa7onn\xc3\xa9\n"
            "01:00.0  device  10de:1b80  VGA compatible controller: NVIDIA Corporation "
            "GP104\n");
}

TEST(InventoryView, WithoutFunctionsOnlyTheHeadingsStand) {
  OutputToText output;
  WriteInventory(output.Get(), *MakeEmptyRepository());
  EXPECT_EQ(output.Text(), "ADDRESS  KIND  ID  DESCRIPTION\n");
}

}  // namespace
}  // namespace pciinfo
