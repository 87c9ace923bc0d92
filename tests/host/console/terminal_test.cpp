// SPDX-License-Identifier: Apache-2.0
#include "host/console/terminal.h"

#include <gtest/gtest.h>

#include <map>

namespace pciinfo {
namespace {

using Variables = std::map<std::string, std::string>;

Environment With(const Variables& variables) {
  return [&variables](const char* name) -> const char* {
    const auto found = variables.find(name);
    return found == variables.end() ? nullptr : found->second.c_str();
  };
}

/// A terminal of a kind with colours, unless the variables say another kind.
Terminal OnTerminal(Variables variables, const TerminalWishes& wishes = {}) {
  variables.emplace("TERM", "xterm");
  return MakeTerminal({true, 120}, With(variables), wishes);
}

Terminal InPipe(const Variables& variables, const TerminalWishes& wishes = {}) {
  return MakeTerminal({false, 0}, With(variables), wishes);
}

TEST(Terminal, APipeHasNeitherWidthNorColourNorPager) {
  const Terminal pipe = InPipe({{"COLUMNS", "50"}, {"PAGER", "more"}});
  EXPECT_FALSE(pipe.width.has_value());
  EXPECT_FALSE(pipe.colour);
  EXPECT_FALSE(pipe.pager.has_value());
}

TEST(Terminal, ATerminalHasAllOfThem) {
  const Terminal terminal = OnTerminal({});
  EXPECT_EQ(terminal.width, 120U);
  EXPECT_TRUE(terminal.colour);
  EXPECT_EQ(terminal.pager, "less");
}

TEST(Terminal, TheWidthMayComeFromTheEnvironment) {
  EXPECT_EQ(MakeTerminal({true, 0}, With({{"COLUMNS", "66"}}), {}).width, 66U);
  EXPECT_EQ(MakeTerminal({true, 0}, With({{"COLUMNS", "wide"}}), {}).width, 80U);
  EXPECT_EQ(MakeTerminal({true, 0}, With({}), {}).width, 80U);
}

TEST(Terminal, TheWidthHasAMinimum) { EXPECT_EQ(MakeTerminal({true, 3}, With({}), {}).width, 40U); }

TEST(Terminal, ColourCanBeTurnedOff) {
  EXPECT_FALSE(OnTerminal({{"NO_COLOR", "1"}}).colour);
  EXPECT_TRUE(OnTerminal({{"NO_COLOR", ""}}).colour);
  EXPECT_FALSE(OnTerminal({}, {"never", true}).colour);
}

TEST(Terminal, ADumbTerminalHasNeitherColourNorPager) {
  for (const char* kind : {"dumb", ""}) {
    const Terminal terminal = OnTerminal({{"TERM", kind}, {"PAGER", "more"}});
    EXPECT_FALSE(terminal.colour) << kind;
    EXPECT_FALSE(terminal.pager.has_value()) << kind;
  }
  EXPECT_FALSE(MakeTerminal({true, 120}, With({}), {}).pager.has_value());
}

TEST(Terminal, ColourCanBeForced) {
  EXPECT_TRUE(OnTerminal({{"NO_COLOR", "1"}}, {"always", true}).colour);
  EXPECT_TRUE(InPipe({}, {"always", true}).colour);
  EXPECT_FALSE(InPipe({}, {"always", true}).width.has_value());
}

TEST(Terminal, TheLocaleDecidesAboutUnicode) {
  EXPECT_FALSE(InPipe({}).unicode);
  EXPECT_TRUE(InPipe({{"LANG", "de_DE.UTF-8"}}).unicode);
  EXPECT_TRUE(InPipe({{"LANG", "C.utf8"}}).unicode);
  EXPECT_FALSE(InPipe({{"LANG", "de_DE.ISO-8859-1"}}).unicode);
  EXPECT_FALSE(InPipe({{"LANG", "C.UTF-8"}, {"LC_ALL", "C"}}).unicode);
  EXPECT_TRUE(InPipe({{"LANG", "C"}, {"LC_CTYPE", "C.UTF-8"}, {"LC_ALL", ""}}).unicode);
}

TEST(Terminal, ThePagerCanBeChosen) {
  EXPECT_EQ(OnTerminal({{"PAGER", "more"}}).pager, "more");
  EXPECT_EQ(OnTerminal({{"PAGER", "more"}, {"PCIINFO_PAGER", "less -R"}}).pager, "less -R");
}

TEST(Terminal, ThePagerCanBeTurnedOff) {
  EXPECT_FALSE(OnTerminal({{"PAGER", ""}}).pager.has_value());
  EXPECT_FALSE(OnTerminal({{"PAGER", "cat"}}).pager.has_value());
  EXPECT_FALSE(OnTerminal({{"PAGER", "more"}, {"PCIINFO_PAGER", "cat"}}).pager.has_value());
  EXPECT_FALSE(OnTerminal({}, {"auto", false}).pager.has_value());
}

TEST(Terminal, TextIsColouredOnlyIfColoursAreOn) {
  EXPECT_EQ(Coloured("text", Colour::kGreen, {}), "text");
  Terminal terminal;
  terminal.colour = true;
  EXPECT_EQ(Coloured("text", Colour::kGreen, terminal), "\x1B[32mtext\x1B[0m");
  EXPECT_EQ(Coloured("text", Colour::kNone, terminal), "text");
  EXPECT_EQ(Coloured("", Colour::kGreen, terminal), "");
}

}  // namespace
}  // namespace pciinfo
