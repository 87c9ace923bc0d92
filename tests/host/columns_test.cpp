#include "host/columns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;

TEST(Columns, AreAsWideAsTheirWidestCell) {
  EXPECT_THAT(
      FormatTable({{"A", 0}, {"HEAD", 0}, {"C", 0}}, {{"long", "x", "1"}, {"l", "y", "22"}}),
      ElementsAre("A     HEAD  C", "long  x     1", "l     y     22"));
}

TEST(Columns, LongCellsAreCut) {
  EXPECT_THAT(FormatTable({{"A", 5}, {"B", 0}}, {{"abcdefgh", "x"}}),
              ElementsAre("A      B", "ab...  x"));
}

TEST(Columns, NoLineEndsInBlanks) {
  EXPECT_THAT(FormatTable({{"A", 0}, {"B", 0}}, {{"x", ""}, {"x", "y  "}}),
              ElementsAre("A  B", "x", "x  y"));
}

TEST(Columns, WideCharactersCountAsTwoColumns) {
  EXPECT_THAT(FormatTable({{"A", 0}, {"B", 0}}, {{"\xe6\x97\xa5", "x"}, {"abc", "y"}}),
              ElementsAre("A    B", "\xe6\x97\xa5   x", "abc  y"));
}

TEST(Columns, WithoutRowsOnlyTheHeadingsStand) {
  EXPECT_THAT(FormatTable({{"A", 0}, {"B", 0}}, {}), ElementsAre("A  B"));
}

TEST(Columns, TableWidthIsThatOfTheLongestLineThatCanBe) {
  EXPECT_EQ(TableWidth({{"A", 0}, {"HEAD", 0}}, {{"abc", "x"}}), 9U);
  EXPECT_EQ(TableWidth({{"A", 5}, {"B", 0}}, {{"abcdefgh", "x"}}), 8U);
}

TEST(Columns, LinesAreWrittenWithTheirEnds) {
  OutputToText output;
  WriteLines(output.Get(), {"a", "", "b"});
  EXPECT_EQ(output.Text(), "a\n\nb\n");
}

}  // namespace
}  // namespace pciinfo
