// SPDX-License-Identifier: Apache-2.0
#include "host/console/columns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;

Terminal OfWidth(std::size_t width) {
  Terminal terminal;
  terminal.width = width;
  return terminal;
}

TEST(Columns, AreAsWideAsTheirWidestCell) {
  EXPECT_THAT(FormatTable({{"A"}, {"HEAD"}, {"C"}}, {{"long", "x", "1"}, {"l", "y", "22"}}, {}),
              ElementsAre("A     HEAD  C", "long  x     1", "l     y     22"));
}

TEST(Columns, WithoutATerminalNothingIsCut) {
  const std::string text(500, 'x');
  EXPECT_THAT(FormatTable({{"A", true}, {"B", true}}, {{text, text}}, {}),
              ElementsAre("A" + std::string(501, ' ') + "B", text + "  " + text));
}

TEST(Columns, TheWidestShrinkingColumnIsCutFirst) {
  const std::string ten(10, 'a');
  const std::string twenty(20, 'b');
  const std::string thirty(30, 'c');
  const auto lines =
      FormatTable({{"A"}, {"B", true}, {"C", true}}, {{ten, twenty, thirty}}, OfWidth(54));
  EXPECT_EQ(lines[1], ten + "  " + twenty + "  " + std::string(17, 'c') + "...");
}

TEST(Columns, ShrinkingColumnsShrinkEqually) {
  const auto lines = FormatTable({{"A", true}, {"B", true}},
                                 {{std::string(99, 'a'), std::string(50, 'b')}}, OfWidth(42));
  EXPECT_EQ(lines[1], std::string(17, 'a') + "...  " + std::string(17, 'b') + "...");
}

TEST(Columns, OtherColumnsAreCutLast) {
  for (const std::size_t width : {40U, 30U, 20U}) {
    const auto lines = FormatTable({{"A"}, {"B", true}},
                                   {{std::string(90, 'a'), std::string(90, 'b')}}, OfWidth(width));
    EXPECT_EQ(lines[1].size(), width);
  }
}

TEST(Columns, LinesHaveNoTrailingSpaces) {
  EXPECT_THAT(FormatTable({{"A"}, {"B"}}, {{"x", ""}, {"x", "y  "}}, {}),
              ElementsAre("A  B", "x", "x  y"));
}

TEST(Columns, WideCharactersCountAsTwoColumns) {
  EXPECT_THAT(FormatTable({{"A"}, {"B"}}, {{"\xe6\x97\xa5", "x"}, {"abc", "y"}}, {}),
              ElementsAre("A    B", "\xe6\x97\xa5   x", "abc  y"));
}

TEST(Columns, WithoutRowsThereAreOnlyHeadings) {
  EXPECT_THAT(FormatTable({{"A"}, {"B"}}, {}, {}), ElementsAre("A  B"));
}

TEST(Columns, ColoursHaveNoWidth) {
  Terminal terminal;
  terminal.colour = true;
  EXPECT_THAT(
      FormatTable({{"A", false, Colour::kCyan}, {"B"}}, {{"x", "y"}, {"xyz", "y"}}, terminal),
      ElementsAre("\x1B[1mA\x1B[0m    \x1B[1mB\x1B[0m", "\x1B[36mx\x1B[0m    y",
                  "\x1B[36mxyz\x1B[0m  y"));
}

TEST(Columns, ALineIsCutToTheTerminal) {
  EXPECT_EQ(FitLine("abcdefghij  ", OfWidth(8)), "abcde...");
  EXPECT_EQ(FitLine("abcd  ", OfWidth(8)), "abcd");
  EXPECT_EQ(FitLine(std::string(300, 'x'), {}), std::string(300, 'x'));
}

TEST(Columns, LinesAreWrittenWithLineEnds) {
  OutputToText output;
  WriteLines(output.Get(), {"a", "", "b"});
  EXPECT_EQ(output.Text(), "a\n\nb\n");
}

}  // namespace
}  // namespace pciinfo
