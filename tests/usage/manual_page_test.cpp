// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "tests/usage/made_usage.h"
#include "tests/usage/shell.h"
#include "usage/writers.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kPage = WRITTEN_DIRECTORY "/pciinfo.1";

std::string MadePage() {
  return ManualPage(MadeUsage(), {"2.0", "2026-01-31", ".SH FILES\nnone\n"});
}

TEST(ManualPage, SaysWhatTheDefinitionsSay) {
  const std::string page = MadePage();
  EXPECT_THAT(page, HasSubstr(".TH WATER 1 2026-01-31 \"water 2.0\""));
  EXPECT_THAT(page, HasSubstr("water \\- waters plants\n"));
  EXPECT_THAT(page, HasSubstr("\\fBlog\\fR \\fIFILE\\fR [\\fIHOW\\fR]\n"));
  EXPECT_THAT(page, HasSubstr("\\fBplants\\fR [\\fIOPTION\\fR]... [\\fICLASS\\fR...]\n"));
  EXPECT_THAT(page, HasSubstr("One of red, blue."));
  EXPECT_THAT(page, HasSubstr("Default: red"));
  EXPECT_THAT(page, HasSubstr(".SH FILES\nnone\n"));
}

TEST(ManualPage, ShowsTextsAsTheyAre) {
  const std::string page = MadePage();
  EXPECT_THAT(page, HasSubstr("\n\\&.Only dry ones\n"));
  EXPECT_THAT(page, HasSubstr("'one' \\e only"));
}

TEST(ManualPage, MakesSectionsOfTitledPartsOfTheFooter) {
  EXPECT_THAT(MadePage(), HasSubstr("Mind the roots.\n.SH \"EXIT STATUS\"\n.TP\n\\fB0\\fR\nwet\n"));
}

TEST(ManualPage, SaysOnceWhatEveryCommandSays) {
  const std::string page = MadePage();
  const std::size_t first = page.find("All cans serve.");
  EXPECT_LT(first, page.find(".SS"));
  EXPECT_EQ(page.find("All cans serve.", first + 1), std::string::npos);
  EXPECT_THAT(page, HasSubstr("Own words."));
}

TEST(ManualPage, OfTheProgramPassesTheToolsWithoutAWarning) {
  NEEDS("man");
  NEEDS("mandoc");
  NEEDS("groff");
  const std::string page = kPage;
  const RunResult man =
      RunShell("MANROFFSEQ= man --warnings -E UTF-8 -l " + page + " 2>&1 >/dev/null");
  EXPECT_EQ(man.status, 0);
  EXPECT_EQ(man.out, "");
  EXPECT_EQ(RunShell("mandoc -T lint " + page).out, "");
  EXPECT_EQ(RunShell("groff -ww -z -man -Tutf8 " + page).out, "");
}

std::set<std::string> WordsLike(const std::string& text, const char* pattern) {
  const std::regex word(pattern);
  const std::sregex_iterator begin(text.begin(), text.end(), word);
  std::set<std::string> words;
  for (auto match = begin; match != std::sregex_iterator(); ++match) words.insert((*match)[1]);
  return words;
}

TEST(ManualPage, OfTheProgramHasEveryCommandAndOptionOfTheHelp) {
  NEEDS("man");
  const RunResult page = RunShell(std::string("MANWIDTH=200 man -E ASCII -l ") + kPage);
  ASSERT_EQ(page.status, 0);
  const std::string help = RunShell(PCIINFO_PROGRAM " --help").out;
  const std::size_t list = help.find("Subcommands:");
  const std::set<std::string> commands =
      WordsLike(help.substr(list, help.find("\n\n", list) - list), "\n  ([a-z]+) ");
  EXPECT_GE(commands.size(), 5U);
  std::set<std::string> options = WordsLike(help, "(--[a-z-]+)");
  for (const std::string& command : commands) {
    EXPECT_THAT(page.out, HasSubstr("\n   " + command + "\n"));
    const RunResult own = RunShell(std::string(PCIINFO_PROGRAM " ") + command + " --help");
    for (const std::string& option : WordsLike(own.out, "(--[a-z-]+)")) options.insert(option);
  }
  EXPECT_GE(options.size(), 10U);
  for (const std::string& option : options) {
    EXPECT_THAT(WordsLike(page.out, "\n +(?:-., )?(--[a-z-]+)"), testing::Contains(option));
  }
}

}  // namespace
}  // namespace pciinfo
