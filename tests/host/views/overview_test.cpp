// SPDX-License-Identifier: Apache-2.0
#include "host/views/overview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;

std::vector<std::string> View(const Overview& overview) {
  OutputToText output;
  WriteOverview(output.Get(), overview, {});
  return LinesOf(output.Text());
}

TEST(OverviewView, ShowsMachineSlotsBoardAndWhatIsUnknown) {
  MachineIdentity machine;
  machine.maker = "Maker";
  machine.product = "Model 1";
  machine.biosVersion = "1.2";
  machine.biosDate = "01/02/2003";
  EXPECT_THAT(
      View(MakeOverview(*MakeFixedRepository(), machine, {"something went wrong"})),
      ElementsAre(
          "System    box", "Machine   Maker Model 1", "BIOS      1.2, 01/02/2003",
          "PCI       5 functions (3 devices, 2 bridges) on 2 buses", "",
          "3 slots, 1 with PCI functions",
          "SLOT                                      TYPE               USAGE      ADDRESS  CARD",
          "PCIEX16_1                                 PCI Express 3 x16  In use     01:00.0  VGA "
          "compatible controller: NVIDIA Corporation GP104",
          "J? a designation that never wants to end  PCI Express 3 x16  Available  -",
          "Tag 3                                     PCI Express 3 x16  9          -", "",
          "On board", "ADDRESS  DESCRIPTION",
          "00:02.0  Display controller with a description that is so long that no line of a "
          "hundred columns could ever hold all of it",
          "00:1f.3  Audio device: Fa\xc3\xa7onn\xc3\xa9",
          "plus 2 bridges and chipset functions (pciinfo devices lists all)", "", "Not shown",
          "something went wrong"));
}

TEST(OverviewView, OfAnEmptyRepositorySaysNoFunctions) {
  EXPECT_THAT(View(MakeOverview(*MakeEmptyRepository(), {}, {})),
              ElementsAre("PCI       no functions"));
}

TEST(OverviewView, CountsSimilarFunctions) {
  Overview overview;
  for (unsigned i = 0; i < 3; ++i) {
    PciFunction function;
    function.path = std::to_string(i);
    function.kind = "device";
    function.address = PciAddress{0, 1, i};
    function.description = "Ethernet controller";
    overview.functions.push_back(function);
  }
  EXPECT_THAT(View(overview),
              ElementsAre("PCI       3 functions (3 devices, 0 bridges) on 1 bus", "", "Devices",
                          "ADDRESS  DESCRIPTION", "00:01.0  3 x Ethernet controller"));
}

}  // namespace
}  // namespace pciinfo
