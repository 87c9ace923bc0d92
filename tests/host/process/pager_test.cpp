// SPDX-License-Identifier: Apache-2.0

// What is different on a terminal: the pager.

#include "host/process/pager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

#include "tests/host/run_on_terminal.h"
#include "tests/runtime/temporary_directory.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

TerminalRun Devices(const std::string& pager) {
  return {{"devices", "--only-plugin", FakePluginFile("fixed")}, {{"PAGER", pager}}};
}

TEST(Pager, ShowsTheOutput) {
  const RunResult result = RunOnTerminal(Devices("sed 's/^/> /'"));
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("> "));
  EXPECT_THAT(result.out, HasSubstr("NVIDIA GP104"));
}

TEST(Pager, CanBeLeftOut) {
  TerminalRun run = Devices("sed 's/^/> /'");
  run.arguments.emplace_back("--no-pager");
  EXPECT_THAT(RunOnTerminal(run).out, Not(HasSubstr("> ")));
  EXPECT_THAT(RunOnTerminal(Devices("cat")).out, HasSubstr("NVIDIA GP104"));
}

TEST(Pager, IsToldHowToShowColours) {
  EXPECT_THAT(RunOnTerminal(Devices("echo \"options $LESS\"; cat >/dev/null")).out,
              HasSubstr("options FRX"));
  TerminalRun run = Devices("echo \"options $LESS\"; cat >/dev/null");
  run.environment["LESS"] = "S";
  EXPECT_THAT(RunOnTerminal(run).out, HasSubstr("options S\r"));
}

TEST(Pager, MayBeLeftEarly) {
  TerminalRun run = {
      {"instances", "QZMSG_PCIRawData", "--only-plugin", FakePluginFile("long_listing")},
      {{"PAGER", "head -n 1"}}};
  const RunResult result = RunOnTerminal(run);
  EXPECT_EQ(result.status, 0);
  // On a slow machine, progress stands before it.
  EXPECT_THAT(result.out, EndsWith("QZMSG_PCIRawData: 1 instance\r\n"));
}

TEST(Pager, IsDoneWithoutWhereItCannotBeStarted) {
  for (const char* pager : {"/nowhere/pager", "/nowhere/pager --option"}) {
    const RunResult result = RunOnTerminal(Devices(pager));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("the pager \"" + std::string(pager) + "\" cannot be start"));
    EXPECT_THAT(result.out, HasSubstr("NVIDIA GP104"));
  }
}

TEST(Pager, AMissingDefaultPagerIsNotMissed) {
  TerminalRun run = Devices("");
  run.environment = {{"PATH", "/nowhere"}};
  const RunResult result = RunOnTerminal(run);
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("NVIDIA GP104"));
  EXPECT_THAT(result.out, Not(HasSubstr("pager")));
}

TEST(Pager, MessagesComeWhenItHasEnded) {
  TerminalRun run = {{"slots", "--only-plugin", FakePluginFile("slotless")},
                     {{"PAGER", "cat; sleep 0.3; echo end of the pager"}, {"NO_COLOR", "1"}}};
  const RunResult result = RunOnTerminal(run);
  EXPECT_EQ(result.status, 0);
  EXPECT_LT(result.out.find("On board\r\n"), result.out.find("end of the pager"));
  EXPECT_LT(result.out.find("end of the pager"), result.out.find("pciinfo: this machine has no"));
}

TEST(Pager, TheTerminalIsRestoredAfterOneThatASignalEnded) {
  TerminalRun run = {
      {"slots", "--only-plugin", FakePluginFile("slotless")},
      {{"PAGER", "cat >/dev/null; stty raw </dev/tty; kill -USR1 $$"}, {"NO_COLOR", "1"}}};
  const RunResult result = RunOnTerminal(run);
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("pciinfo: this machine has no"));
  EXPECT_THAT(result.out, EndsWith("\r\n"));  // a raw terminal would add no carriage return
}

TEST(Pager, IsNotStartedForNothing) {
  const RunResult result = RunOnTerminal(
      {{"show", "nothing", "--only-plugin", FakePluginFile("fixed")}, {{"PAGER", "echo pager"}}});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out, Not(HasSubstr("pager\r")));
}

TEST(Pager, TheExitStatusIsThatOfTheProgram) {
  EXPECT_EQ(RunOnTerminal({{"instances", "--only-plugin", FakePluginFile("throwing")},
                           {{"PAGER", "cat >/dev/null; exit 3"}}})
                .status,
            1);
}

TEST(Pager, AnInterruptIsTheirsWhoReadAndEndsTheProgramThen) {
  TerminalRun run = Devices("trap '' INT; head -n 1; sleep 1; echo read on");
  run.keys = "\x03";
  const RunResult result = RunOnTerminal(run);
  EXPECT_THAT(result.out, HasSubstr("read on"));
}

TEST(Pager, AnInterruptBeforeAnyOutputEndsTheProgram) {
  TerminalRun run = {{"instances", "QZMSG_SystemSlot", "--only-plugin", FakePluginFile("hostile"),
                      "--timeout", "60"},
                     {{"PAGER", "echo pager"}, {"HOSTILE", "Hang QZMSG_SystemSlot"}}};
  run.keys = "\x03";
  const RunResult result = RunOnTerminal(run);
  EXPECT_EQ(result.status, 128 + SIGINT);
  EXPECT_THAT(result.out, Not(HasSubstr("pager\r")));
}

// The pager runs with the rights of the program, so that whoever called it with fewer rights must
// not be able to start programs from it.
class RestrictedPager : public testing::Test {
 protected:
  void SetUp() override {
    if (access("/usr/bin/less", X_OK) != 0) GTEST_SKIP() << "less is not installed";
    directory_.WriteScript("less", "echo a less of the user\\'s own");
    run_.environment["SUDO_UID"] = "4242";
    run_.environment["PATH"] = directory_.GetPath() + ":/usr/bin:/bin";
    run_.environment["LESS"] = "R";  // does not end where everything fits on the screen
  }

  vtq::TemporaryDirectory directory_;
  TerminalRun run_ = Devices("sh -c 'echo a shell'");
};

TEST_F(RestrictedPager, StartsNoProgram) {
  run_.environment["LESSSECURE"] = "0";
  run_.keys = "!echo escaped$((40 + 2))\rq";
  const RunResult result = RunOnTerminal(run_);
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("NVIDIA GP104"));
  EXPECT_THAT(result.out, Not(HasSubstr("escaped42")));
}

TEST_F(RestrictedPager, IsNotThatOfTheUser) {
  run_.keys = "q";
  const RunResult result = RunOnTerminal(run_);
  EXPECT_THAT(result.out, Not(HasSubstr("a shell")));
  EXPECT_THAT(result.out, Not(HasSubstr("of the user's own")));
}

TEST_F(RestrictedPager, IsNotForAUserWithTheSameRights) {
  run_.environment.erase("SUDO_UID");
  EXPECT_THAT(RunOnTerminal(run_).out, HasSubstr("a shell"));
}

}  // namespace
