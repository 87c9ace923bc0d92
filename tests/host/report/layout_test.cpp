// SPDX-License-Identifier: Apache-2.0
#include "host/report/layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bench/machine_files.h"
#include "host/formats/json_reader.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/report/drawing_checks.h"
#include "tests/host/report/read_machine.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

std::vector<PartGroup> AllParts(const MachineModel& machine) {
  std::vector<PartGroup> parts = PartsOf(MakePortTree(machine), machine);
  parts.push_back(SlotsWithoutPort(machine));
  return parts;
}

void ExpectGoodDrawing(const MachineModel& machine) {
  std::vector<PartGroup> parts = AllParts(machine);
  for (const bool isFolded : {false, true}) {
    SCOPED_TRACE(isFolded ? "folded" : "not folded");
    if (isFolded) FoldParts(parts);
    const std::vector<Panel> panels = LayOut(parts);
    for (const Panel& panel : panels) ExpectLegible(panel);
    ExpectComplete(panels, machine);
  }
}

TEST(Layout, OfTheFixedMachineIsLegibleAndComplete) {
  ExpectGoodDrawing(ReadMachine(*MakeTopologyRepository()));
}

TEST(Layout, OfLongAndForeignNames) {
  MachineModel machine = ReadMachine(*MakeTopologyRepository());
  for (const std::string& name :
       {std::string(10000, 'W'), std::string("\ufdfd \u4e2d\u6587 \u0645\u0631\u062d"),
        std::string("<script>\"'&</script>"), std::string("\u202e\u0000x", 5)}) {
    for (MachineFunction& function : machine.functions) function.deviceName = name;
    for (MachineSlot& slot : machine.slots) slot.name = name;
    ExpectGoodDrawing(machine);
  }
}

TEST(Layout, OfNothingHasNoPanels) { EXPECT_TRUE(LayOut(AllParts({})).empty()); }

TEST(Layout, OfTheExamples) {
  for (const char* name : {"server", "server-after-service"}) {
    SCOPED_TRACE(name);
    ExpectGoodDrawing(MachineOfCapture(std::string(EXAMPLES "/") + name + ".tar.gz"));
  }
}

class GeneratedMachine : public testing::TestWithParam<std::size_t> {};

TEST_P(GeneratedMachine, IsLegibleCompleteAndFolded) {
  const vtq::TemporaryDirectory directory;
  bench::WriteMachine(GetParam(), directory / "machine");
  const MachineModel machine = MachineOfCapture(directory / "machine");
  ASSERT_EQ(machine.functions.size(), GetParam());
  ExpectGoodDrawing(machine);
  std::vector<PartGroup> parts = AllParts(machine);
  FoldParts(parts);
  EXPECT_LT(CountParts(parts), 400U);
}

// With sanitizers the largest takes a minute, and runs no code that the others do not.
#ifdef PCIINFO_SANITIZED
const auto kSizes = testing::Values(64, 512);
#else
const auto kSizes = testing::Values(64, 512, 4096);
#endif

INSTANTIATE_TEST_SUITE_P(Sizes, GeneratedMachine, kSizes);

TEST(Layout, DistributesPanelsOverColumns) {
  std::vector<Panel> panels;
  for (const double height : {100, 100, 200, 50, 150})
    panels.push_back({"", 10, height, {}, {}, {}});
  using testing::ElementsAre;
  EXPECT_THAT(InColumns(panels, 1, 10), ElementsAre(ElementsAre(0, 1, 2, 3, 4)));
  EXPECT_THAT(InColumns(panels, 3, 10),
              ElementsAre(ElementsAre(0, 1), ElementsAre(2), ElementsAre(3, 4)));
  EXPECT_EQ(InColumns(panels, 9, 10).size(), 5U);
}

}  // namespace
}  // namespace pciinfo
