// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/row_writer.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "runtime/file_descriptor.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

const std::vector<std::string> kNames = {"name", "count", "share", "is_new", "slot"};

/// A row with each type, and with characters that are not safe on a terminal.
const DbRow kRow = {std::string("a\"\x1b[2J\xe2\x80\xae"), std::int64_t{-9007199254740993}, 0.5,
                    true, DbValue()};

std::string Rows(const RowFormat& form, const std::vector<DbRow>& rows,
                 const std::vector<std::string>& names = kNames) {
  const vtq::TemporaryDirectory directory;
  const vtq::FileDescriptor file(open(directory.Write("rows", "").c_str(), O_WRONLY | O_CLOEXEC));
  Output output(file.Get());
  const auto writer = MakeRowWriter(form, output);
  writer->Begin(names);
  for (const DbRow& row : rows) writer->Write(row);
  writer->End();
  output.Flush();
  return directory.Read("rows");
}

TEST(RowWriter, WritesJson) {
  const std::string row =
      R"({"name":"a\"\u001b[2J\u202e","count":-9007199254740993,"share":0.5,"is_new":true,)"
      R"("slot":null})";
  EXPECT_EQ(Rows({"json", "cards", {}, {}}, {kRow, kRow}),
            "{\"cards\":[\n" + row + ",\n" + row + "\n]}\n");
  EXPECT_EQ(Rows({"json", "cards", {}, {}}, {}), "{\"cards\":[]}\n");
  EXPECT_EQ(Rows({"jsonl", "cards", {}, {}}, {kRow, kRow}), row + "\n" + row + "\n");
  EXPECT_EQ(Rows({"jsonl", "cards", {}, {}}, {}), "");
}

TEST(RowWriter, WritesYaml) {
  const std::string row =
      "- name: \"a\\\"\\x1b[2J\\u202e\"\n  count: -9007199254740993\n  share: 0.5\n"
      "  is_new: true\n  slot: null\n";
  EXPECT_EQ(Rows({"yaml", "cards", {}, {}}, {kRow, kRow}), "cards:\n" + row + row);
  EXPECT_EQ(Rows({"yaml", "cards", {}, {}}, {}), "cards: []\n");
}

TEST(RowWriter, WritesCsv) {
  const std::string head = "\"name\",\"count\",\"share\",\"is_new\",\"slot\"\r\n";
  EXPECT_EQ(Rows({"csv", "", {}, {}}, {kRow}),
            head + "\"a\"\"\x1b[2J\xe2\x80\xae\",-9007199254740993,0.5,true,\r\n");
  Terminal terminal;
  terminal.width = 80;
  EXPECT_EQ(Rows({"csv", "", {}, terminal}, {kRow}),
            head + "\"a\"\"?[2J?\",-9007199254740993,0.5,true,\r\n");
  EXPECT_EQ(Rows({"csv", "", {}, {}}, {}), head);
}

TEST(RowWriter, WritesATable) {
  EXPECT_EQ(Rows({"table", "", {}, {}}, {kRow}),
            "name     count              share  is_new  slot\n"
            "a\"?[2J?  -9007199254740993  0.5    true\n");
  EXPECT_EQ(Rows({"table", "", {{"count", {.heading = "COUNT"}}}, {}}, {kRow}),
            "COUNT\n-9007199254740993\n");
  EXPECT_EQ(Rows({"table", "", {}, {}}, {}), "");
}

TEST(RowWriter, FitsATableIntoTheTerminal) {
  Terminal terminal;
  terminal.width = 30;
  const DbRow row = {std::string("a machine with a long name"),
                     std::string("a long text beside it")};
  for (const std::string& line : {Rows({"table", "", {}, terminal}, {row}, {"one", "two"})}) {
    EXPECT_LE(line.find('\n', line.find('\n') + 1) - line.find('\n') - 1, 30U) << line;
  }
}

TEST(RowWriter, RefusesEqualNamesWhereTheyWouldBeLost) {
  for (const char* format : {"json", "jsonl", "yaml"}) {
    EXPECT_THROW(Rows({format, "rows", {}, {}}, {}, {"a", "b", "a"}), std::runtime_error);
  }
  EXPECT_EQ(Rows({"csv", "", {}, {}}, {}, {"a", "a"}), "\"a\",\"a\"\r\n");
}

TEST(RowWriter, WritesNullForWhatIsNoNumber) {
  const DbRow row = {std::numeric_limits<double>::infinity()};
  EXPECT_EQ(Rows({"jsonl", "", {}, {}}, {row}, {"a"}), "{\"a\":null}\n");
}

}  // namespace
}  // namespace pciinfo
