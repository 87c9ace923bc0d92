// SPDX-License-Identifier: Apache-2.0
#include "host/diff/machine_diff_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/diff/identity_facts.h"
#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

MachineDiff ShownDiff() {
  ObjectChange machine;
  machine.subject = "machine";
  machine.facts = {{"BiosVersion", "1", "2", "BIOS version 1 -> 2"}};
  ObjectChange moved;
  moved.subject = "function";
  moved.label = "Caf\xc3\xa9 card";
  moved.functions = {{0, {7, 0, 0}}, {0, {7, 0, 1}}};
  moved.formerFunctions = {{0, {5, 0, 0}}, {0, {5, 0, 1}}};
  moved.facts = {{"Slot", "A", "B", "moved from A to B"},
                 {"LinkWidth", "x8", "x4", "link narrower: x8 -> x4"}};
  ObjectChange added;
  added.op = ObjectChange::Op::kAdd;
  added.subject = "slot";
  added.label = "C\x1b";
  added.slots = {"C\x1b"};
  added.facts = {{"", {}, {}, "added"}};
  return {{machine, moved, added},
          {{DiffSideName::kAfter, "Driver", "driver of 2 functions", ""},
           {DiffSideName::kAfter, "SerialNumber", "serial number of 1 function", "not root"}}};
}

std::string TextFor(const MachineDiff& diff, bool hasDomains = false) {
  OutputToText output;
  WriteMachineDiff(output.Get(), {"old\x1b", "new", {}}, diff, hasDomains);
  return output.Text();
}

json JsonFor(const MachineDiff& diff) {
  OutputToText output;
  WriteMachineDiffJson(output.Get(), {"old\x1b", "new", {"Bus"}}, diff);
  return json::parse(output.Text());
}

TEST(MachineDiffView, TextGroupsChangesByObject) {
  EXPECT_EQ(TextFor(ShownDiff()),
            "--- old?\n+++ new\n"
            "~ machine\n"
            "    BIOS version 1 -> 2\n"
            "~ 2 functions 07:00.0-1 (was 05:00.0-1)  Caf\xc3\xa9 card\n"
            "    moved from A to B\n"
            "    link narrower: x8 -> x4\n"
            "+ slot C?\n"
            "    added\n");
  EXPECT_THAT(TextFor(ShownDiff(), true), HasSubstr("0000:07:00.0-1"));
  EXPECT_EQ(TextFor({}), "No differences.\n");
}

TEST(MachineDiffView, ManyBusesAndAddressesAreCutShort) {
  ObjectChange buses;
  buses.subject = "buses";
  for (int i = 0; i < 10; ++i) buses.facts.push_back({"Bus", "a", "b", "a bus"});
  ObjectChange functions;
  functions.subject = "function";
  for (unsigned i = 0; i < 20; ++i) functions.functions.push_back({0, {1, i, 0}});
  functions.facts = {{"Driver", "a", "b", "driver a -> b"}};
  const std::string text = TextFor({{buses, functions}, {}});
  EXPECT_THAT(text, HasSubstr("    and 2 more\n"));
  EXPECT_THAT(text, HasSubstr("~ 20 functions 01:00.0, "));
  EXPECT_THAT(text, HasSubstr("01:07.0, and 12 more\n"));
  EXPECT_THAT(text, EndsWith("Lists are cut short; --format json has all of them.\n"));
  EXPECT_EQ(JsonFor({{buses, functions}, {}})["changes"].size(), 11U);
}

TEST(MachineDiffView, JsonHasAnElementForEachProperty) {
  const json document = JsonFor(ShownDiff());
  EXPECT_EQ(document["before"], "old\x1b");
  EXPECT_EQ(document["compared"], "machines");
  EXPECT_EQ(document["ignored"], json({"Bus"}));
  ASSERT_EQ(document["changes"].size(), 4U);
  EXPECT_EQ(document["changes"][1]["op"], "move");
  EXPECT_EQ(document["changes"][1]["functions"], json({"0000:07:00.0", "0000:07:00.1"}));
  EXPECT_EQ(document["changes"][1]["formerFunctions"], json({"0000:05:00.0", "0000:05:00.1"}));
  EXPECT_EQ(document["changes"][2]["op"], "replace");
  EXPECT_EQ(document["changes"][2]["old"], "x8");
  EXPECT_EQ(document["changes"][3]["op"], "add");
  EXPECT_EQ(document["changes"][3]["slots"], json({"C\x1b"}));
  EXPECT_FALSE(document["changes"][3].contains("property"));
  EXPECT_EQ(document["notCompared"][1]["because"], "not root");
  EXPECT_FALSE(document["notCompared"][0].contains("because"));
}

TEST(MachineDiffView, OneLineSaysWhatASideDoesNotTell) {
  EXPECT_THAT(NotComparedLines({"a", "b", {}}, ShownDiff()),
              ElementsAre("b: not compared, because this side does not tell it: driver of 2 "
                          "functions; serial number of 1 function (not root)"));
}

TEST(IdentityLine, IsReadBack) {
  MachineIdentity identity;
  identity.product = "X \"1\"";
  identity.biosDate = "01/02/2024";
  OutputToText output;
  WriteIdentityLine(output.Get(), identity);
  const std::string line = output.Text();
  EXPECT_EQ(line.find('\n'), line.size() - 1);
  EXPECT_EQ(ReadIdentityLine(line).product, identity.product);
  EXPECT_EQ(ReadIdentityLine(line).biosDate, identity.biosDate);
  EXPECT_THROW(ReadIdentityLine("{\"instances\":[]}"), std::runtime_error);
  EXPECT_THROW(ReadIdentityLine("x"), std::runtime_error);
}

}  // namespace
}  // namespace pciinfo
