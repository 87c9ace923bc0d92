// SPDX-License-Identifier: Apache-2.0
#include "host/views/overview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/console/text.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;
using testing::Not;

Overview MadeOverview() {
  Overview overview;
  overview.identity.maker = "Dell Inc.";
  overview.identity.product = "Precision 5820";
  overview.identity.boardMaker = "To Be Filled By O.E.M.";
  overview.identity.biosVersion = "2.1";
  overview.identity.biosDate = "01/02/2024";
  overview.systemName = "box";
  overview.machine = ReadMachine(*MakeTopologyRepository());
  overview.notRead = {"a reason"};
  return overview;
}

std::string Written(const Overview& overview, std::optional<std::size_t> width = {}) {
  OutputToText output;
  Terminal terminal;
  terminal.width = width;
  WriteOverview(output.Get(), overview, terminal);
  return output.Text();
}

TEST(OverviewOfTheMachine, TellsMachineSlotsAndDoubts) {
  const std::string text = Written(MadeOverview());
  for (const char* part :
       {"System    box\n", "Machine   Dell Precision 5820\n", "BIOS      2.1, 01/02/2024\n",
        "PCI       12 functions, 4 of them bridges\n",
        "Slots     6 slots: 4 in use, 1 matched to a card\n",
        "NVIDIA GP104 [GeForce GTX 1080] + audio\n", "In PCIEX4_1 or PCIEX4_2",
        "In slots that the firmware does not name\n", "On board\n", "Place unknown: ",
        "4 bridges and chipset functions are not listed here", "1 slot leads nowhere",
        "1 link is narrower than both ends allow (\"pciinfo tree\" marks it)\n",
        "M2_1: the firmware says in use, and none answers\n", "Not shown\na reason\n"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
  EXPECT_THAT(text, Not(HasSubstr("To Be Filled")));
  EXPECT_THAT(text, Not(HasSubstr("Board ")));
}

TEST(OverviewOfTheMachine, FitsTheTerminal) {
  for (const std::size_t width : {60U, 80U, 100U, 160U}) {
    for (const std::string& line : LinesOf(Written(MadeOverview(), width))) {
      EXPECT_LE(DisplayWidth(line), width) << line;
    }
  }
}

TEST(OverviewOfTheMachine, OfNothingSaysSo) {
  const std::string text = Written({});
  EXPECT_THAT(text, HasSubstr("PCI       no functions\n"));
  EXPECT_THAT(text, HasSubstr("Slots     none known\n"));
}

TEST(OverviewOfTheMachine, WritesJson) {
  OutputToText output;
  WriteOverviewJson(output.Get(), MadeOverview());
  const auto document = nlohmann::json::parse(output.Text());
  EXPECT_EQ(document["system"], "box");
  EXPECT_EQ(document["machine"]["product"], "Precision 5820");
  EXPECT_FALSE(document["machine"].contains("boardMaker"));
  EXPECT_EQ(document["counts"]["matched"], 1);
  EXPECT_EQ(document["slots"].size(), 6U);
  EXPECT_EQ(document["notRead"][0], "a reason");
}

}  // namespace
}  // namespace pciinfo
