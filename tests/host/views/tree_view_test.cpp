// SPDX-License-Identifier: Apache-2.0
#include "host/views/tree_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/console/text.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;

/// A bridge with four similar cards behind it in a slot, and one more function.
std::vector<RootBus> SmallTree() {
  std::vector<PciFunction> functions(6);
  functions[0].address = PciAddress{0, 1, 0};
  functions[0].kind = "bridge";
  functions[0].description = "PCI bridge";
  functions[5].address = PciAddress{0, 2, 0};
  functions[5].description = "Last \x1B[31m";
  Slot slot;
  slot.designation = "SLOT 1";
  for (unsigned i = 1; i < 5; ++i) {
    functions[i].path = std::to_string(i);
    functions[i].address = PciAddress{1, 0, i};
    functions[i].description = "Ethernet controller";
    slot.functions.push_back(functions[i]);
  }
  return MakeBusTree({functions, {slot}, [](const PciAddress&) { return BridgeBuses{1, 3}; }});
}

std::vector<std::string> Drawn(const std::vector<RootBus>& tree, const Terminal& terminal) {
  OutputToText output;
  WriteTree(output.Get(), tree, terminal);
  return LinesOf(output.Text());
}

TEST(TreeView, DrawsBusesBridgesAndSlots) {
  EXPECT_THAT(Drawn(SmallTree(), {}),
              ElementsAre("Bus 00", "|- 00:01.0  buses 01-03  PCI bridge",
                          "|  |- 01:00.1 [SLOT 1]  Ethernet controller",
                          "|  |- 01:00.2 [SLOT 1]  Ethernet controller",
                          "|  |- 01:00.3 [SLOT 1]  Ethernet controller",
                          "|  `- 01:00.4 [SLOT 1]  Ethernet controller", "`- 00:02.0  Last ?[31m"));
}

TEST(TreeView, CountsMergedFunctions) {
  auto tree = SmallTree();
  FoldAlike(tree);
  EXPECT_EQ(Drawn(tree, {})[2], "|  `- 01:00.1 .. 01:00.4 [SLOT 1]  4 x Ethernet controller");
}

TEST(TreeView, DrawsUnicodeLinesIfTheTerminalShowsThem) {
  Terminal terminal;
  terminal.unicode = true;
  EXPECT_EQ(Drawn(SmallTree(), terminal).back(), "\u2514\u2500 00:02.0  Last ?[31m");
}

TEST(TreeView, FitsTheTerminal) {
  Terminal terminal;
  terminal.width = 40;
  auto tree = SmallTree();
  FoldAlike(tree);
  for (const std::string& line : Drawn(tree, terminal)) EXPECT_LE(DisplayWidth(line), 40U) << line;
  EXPECT_EQ(Drawn(tree, terminal)[2], "|  `- 01:00.1 .. 01:00.4 [SLOT 1]  4 ...");
}

TEST(TreeView, MarksWithColours) {
  Terminal terminal;
  terminal.colour = true;
  EXPECT_EQ(Drawn(SmallTree(), terminal)[2],
            "|  |- \x1B[36m01:00.1\x1B[0m\x1B[32m [SLOT 1]\x1B[0m  Ethernet controller");
}

}  // namespace
}  // namespace pciinfo
