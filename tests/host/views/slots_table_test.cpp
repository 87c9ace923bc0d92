// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/console/text.h"
#include "host/views/slots_view.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

Terminal OfWidth(std::size_t width) {
  Terminal terminal;
  terminal.width = width;
  return terminal;
}

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> Table(const SlotsModel& model, const Terminal& terminal = {}) {
  OutputToText output;
  WriteSlotsTable(output.Get(), model, terminal);
  return LinesOf(output.Text());
}

Slot WideSlot() {
  Slot slot;
  slot.tag = "Tag 123456789";
  slot.designation = std::string(80, 'd');
  slot.type = 0x1A;
  slot.usage = 5;
  slot.width = 7;
  slot.id = 65535;
  slot.hotPlug = true;
  slot.functions.resize(1);
  slot.functions[0].location = std::string(50, 'l');
  slot.functions[0].description = std::string(200, 'x');
  return slot;
}

TEST(SlotsTable, ShowsSlotsTheirFunctionsAndTheBoard) {
  EXPECT_THAT(
      Table(ReadSlots(*MakeFixedRepository()), OfWidth(100)),
      ElementsAre(
          "TAG    DESIGNATION                               TYPE               USAGE      WIDTH  "
          "ID  HOTPLUG",
          "Tag 1  PCIEX16_1                                 PCI Express 3 x16  In use     x16    7 "
          "  no",
          "        01:00.0  VGA compatible controller: NVIDIA Corporation GP104",
          "Tag 2  J? a designation that never wants to end  PCI Express 3 x16  Available  x16    7 "
          "  yes",
          "Tag 3  -                                         PCI Express 3 x16  9          x16    7 "
          "  no",
          "", "On board:", "  00:00.0  Host bridge: Intel", "  00:01.0  PCI bridge: Intel",
          "  00:02.0  Display controller with a description that is so long that no line of a "
          "hundred column...",
          "  00:1f.3  Audio device: Fa\xc3\xa7onn\xc3\xa9"));
}

TEST(SlotsTable, DoesNotCutWithoutATerminal) {
  SlotsModel model;
  model.slots = {WideSlot()};
  model.onBoard = model.slots[0].functions;
  const std::vector<std::string> lines = Table(model);
  EXPECT_THAT(lines[1], HasSubstr(*model.slots[0].designation));
  EXPECT_THAT(lines[2], HasSubstr(model.onBoard[0].description));
  EXPECT_THAT(lines[5], HasSubstr(model.onBoard[0].description));
}

TEST(SlotsTable, CutsLongTextsToTheTerminalWidth) {
  SlotsModel model;
  model.slots = {WideSlot()};
  model.onBoard = model.slots[0].functions;
  for (const std::size_t width : {72U, 100U, 150U}) {
    const std::vector<std::string> lines = Table(model, OfWidth(width));
    EXPECT_EQ(lines.size(), 6U);
    for (const std::string& line : lines) EXPECT_LE(DisplayWidth(line), width) << line;
  }
}

TEST(SlotsTable, UnsetValuesAreDashes) {
  SlotsModel model;
  model.slots.resize(1);
  model.slots[0].tag = "Tag 1";
  EXPECT_THAT(Table(model)[1], HasSubstr("Tag 1  -            -     -      -      -   -"));
}

TEST(SlotsTable, OfAnEmptyModelIsEmpty) { EXPECT_THAT(Table({}), ElementsAre()); }

TEST(SlotsTable, WithoutSlotsWritesOnlyTheBoard) {
  SlotsModel model;
  model.onBoard.resize(1);
  model.onBoard[0].location = "somewhere";
  EXPECT_THAT(Table(model), ElementsAre("On board:", "  somewhere"));
}

}  // namespace
}  // namespace pciinfo
