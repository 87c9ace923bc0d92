// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <memory>

#include "host/report/dot_writer.h"
#include "host/report/layout.h"
#include "host/report/svg_writer.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"
#include "tests/host/unsafe_text.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;
using testing::Not;

bool IsXml(const std::string& text) {
  const std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> document(
      xmlReadMemory(text.data(), static_cast<int>(text.size()), "x", nullptr, XML_PARSE_NONET),
      &xmlFreeDoc);
  return document != nullptr;
}

std::vector<PartGroup> PartsNamed(const std::string& name) {
  MachineModel machine = ReadMachine(*MakeTopologyRepository());
  for (MachineFunction& function : machine.functions) function.deviceName = name;
  for (MachineSlot& slot : machine.slots) slot.name = name;
  return PartsOf(MakePortTree(machine), machine);
}

std::string Svg(const std::vector<PartGroup>& parts) {
  OutputToText output;
  WriteSvg(output.Get(), LayOut(parts), "A <title>");
  return output.Text();
}

std::string Dot(const std::vector<PartGroup>& parts) {
  OutputToText output;
  WriteDot(output.Get(), parts);
  return output.Text();
}

TEST(TreeAsSvg, IsOneDocumentWithItsStyle) {
  const std::string svg = Svg(PartsNamed("A card"));
  EXPECT_TRUE(IsXml(svg));
  EXPECT_THAT(svg, HasSubstr("<title>A &lt;title&gt;</title>"));
  EXPECT_THAT(svg, HasSubstr("prefers-color-scheme"));
  EXPECT_THAT(svg, HasSubstr(">NVIDIA A card"));
  EXPECT_THAT(svg, Not(HasSubstr("href")));
}

TEST(TreeAsSvg, EscapesTexts) {
  for (const std::string& name :
       {std::string("<script>x</script>"), std::string("\"&'"), EveryUnsafeCharacter()}) {
    const std::string svg = Svg(PartsNamed(name));
    EXPECT_TRUE(IsXml(svg)) << name;
    EXPECT_EQ(FirstUnsafe(svg), -1);
    EXPECT_THAT(svg, Not(HasSubstr("<script")));
  }
}

TEST(TreeAsDot, HasClustersForBusesAndSlots) {
  const std::string dot = Dot(PartsNamed("A card"));
  EXPECT_TRUE(dot.starts_with("digraph pci {\n"));
  EXPECT_THAT(dot, HasSubstr("label=\"Bus 00\";"));
  EXPECT_THAT(dot, HasSubstr("[label=\"narrow: x8 of x16, 8 GT/s\", penwidth=3.00, style=dashed]"));
  EXPECT_EQ(std::count(dot.begin(), dot.end(), '{'), std::count(dot.begin(), dot.end(), '}'));
}

TEST(TreeAsDot, EscapesTexts) {
  const std::string dot = Dot(PartsNamed("\"]; x \\N &lt; \x1b"));
  EXPECT_THAT(dot, HasSubstr("\\\"]; x \\\\N &amp;lt; ?"));
  EXPECT_EQ(FirstUnsafe(dot), -1);
}

TEST(TreeFormats, AreChosenByOption) {
  EXPECT_TRUE(IsXml(RunFake("fixed", {"tree", "--format", "svg"}).out));
  const std::string all = RunFake("fixed", {"tree", "--format", "dot"}).out;
  EXPECT_THAT(all, HasSubstr("PCIEX1\""));
  const std::string some =
      RunFake("fixed", {"tree", "--format", "dot", "--filter", "class=03"}).out;
  EXPECT_THAT(some, HasSubstr("GeForce"));
  EXPECT_THAT(some, Not(HasSubstr("I350")));
  EXPECT_THAT(some, Not(HasSubstr("PCIEX1\"")));
}

}  // namespace
}  // namespace pciinfo
