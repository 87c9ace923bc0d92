// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/runtime/temporary_directory.h"
#include "tests/usage/made_usage.h"
#include "tests/usage/shell.h"
#include "usage/writers.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;

class Completion : public testing::Test {
 protected:
  Completion() {
    directory_.Write("bash", BashCompletion(MadeUsage()));
    directory_.Write("fish", FishCompletion(MadeUsage()));
    directory_.Write("zsh", ZshCompletion(MadeUsage()));
    std::filesystem::create_directory(directory_ / "files");
    directory_.Write("files/big can", "\n");
    directory_.Write("files/tap", "\n");
    // The program that lists what there is.
    directory_.Write("water",
                     "#!/bin/sh\n[ \"$*\" = \"list --all\" ] || exit 1\n"
                     "printf 'POT\\r\\n\"big \"\"blue\"\" #1\"\\r\\n01:00.0\\n01:00.1\\n"
                     "01:00.0\\n'\n");
    std::filesystem::permissions(directory_ / "water", std::filesystem::perms::owner_all);
  }

  /// The completions that bash proposes for the last of `words`: "A|B|".
  std::string Bash(const std::string& words) const {
    return RunShell(WithProgram() + "exec bash --norc -c '. ../bash; COMP_WORDS=(" + words +
                    "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _water; " +
                    "printf \"%s|\" \"${COMPREPLY[@]}\"'")
        .out;
  }

  /// The completions that fish proposes for a command line, one line each.
  std::string Fish(const std::string& line) const {
    return RunShell(WithProgram() + "HOME=" + directory_.GetPath() +
                    " fish --no-config -c '. ../fish; complete -C \"" + line + "\"'")
        .out;
  }

  std::string Syntax(const std::string& shell) const {
    return RunShell(shell + " -n " + (directory_ / shell)).out;
  }

 private:
  std::string WithProgram() const {
    const std::string& directory = directory_.GetPath();
    return "cd " + directory + "/files && export PATH=" + directory + ":$PATH && ";
  }

  vtq::TemporaryDirectory directory_;
};

TEST_F(Completion, BashProposesCommandsAndOptions) {
  EXPECT_EQ(Bash("water \"\""), "plants|log|pot|");
  EXPECT_EQ(Bash("water pl"), "plants|");
  EXPECT_EQ(Bash("water --c"), "--can|");
  EXPECT_EQ(Bash("water plants --"), "--help|--version|--can|--tone|--colour|--dry|--ignore|");
  EXPECT_EQ(Bash("water log --d"), "|");
}

TEST_F(Completion, BashProposesValues) {
  EXPECT_EQ(Bash("water plants --colour \"\""), "red|blue|");
  EXPECT_EQ(Bash("water plants --colour = b"), "blue|");
  EXPECT_EQ(Bash("water plants --colour ="), "red|blue|");
  EXPECT_EQ(Bash("water plants Mo"), "Moss|");
  EXPECT_EQ(Bash("water plants Fern \"\""), "Fern|Moss|");
  EXPECT_EQ(Bash("water plants --ignore too-w"), "too-wet|");
}

TEST_F(Completion, BashProposesFiles) {
  EXPECT_EQ(Bash("water -c b"), "big can|");
  EXPECT_EQ(Bash("water --can = t"), "tap|");
  EXPECT_EQ(Bash("water log t"), "tap|");
}

TEST_F(Completion, BashTakesNoValueForTheCommand) {
  EXPECT_EQ(Bash("water --can log \"\""), "plants|log|pot|");
  EXPECT_EQ(Bash("water --can = log plants F"), "Fern|");
}

TEST_F(Completion, BashProposesEachArgumentInItsPlace) {
  EXPECT_EQ(Bash("water log t"), "tap|");
  EXPECT_EQ(Bash("water log tap \"\""), "long|short|");
  EXPECT_EQ(Bash("water --can x log --tone high tap s"), "short|");
  EXPECT_EQ(Bash("water log tub : //a s"), "short|");
}

TEST_F(Completion, BashProposesChoicesThatTheHelpSeparates) {
  EXPECT_EQ(Bash("water pot --sort \"\""), "up|down|");
}

TEST_F(Completion, BashProposesTheChoicesOfTheCommand) {
  EXPECT_EQ(Bash("water --tone \"\""), "high|");
  EXPECT_EQ(Bash("water log --tone \"\""), "high|");
  EXPECT_EQ(Bash("water pot --tone \"\""), "high|low|");
}

TEST_F(Completion, BashProposesPartsOfLists) {
  EXPECT_EQ(Bash("water pot --parts \"\""), "leaf|root|");
  EXPECT_EQ(Bash("water pot --parts leaf,r"), "leaf,root|");
  EXPECT_EQ(Bash("water pot --only s"), "size=|");
  EXPECT_EQ(Bash("water pot --only = s"), "size=|");
  EXPECT_EQ(Bash("water pot --only size = 3,p"), "3,place=|");
  EXPECT_EQ(Bash("water pot --only = size = 3,p"), "3,place=|");
  EXPECT_EQ(Bash("water pot --only size = 3 --sort d"), "down|");
  EXPECT_EQ(Bash("water --can = big log t"), "tap|");
}

TEST_F(Completion, BashProposesWhatTheProgramLists) {
  EXPECT_EQ(Bash("water pot \"\""), "01:00.0|01:00.1|big\\ \\\"blue\\\"\\ #1|");
  EXPECT_EQ(Bash("water pot bi"), "big\\ \\\"blue\\\"\\ #1|");
  // Bash completes the part behind the last colon.
  EXPECT_EQ(Bash("water pot 01 :"), "00.0|00.1|");
  EXPECT_EQ(Bash("water pot 01 : 00.1"), "00.1|");
  EXPECT_EQ(Bash("water pot 02"), "|");
}

/// Tests that need a shell which few machines have.
class OtherShells : public Completion {};

TEST_F(OtherShells, FishProposesCommandsOptionsAndValues) {
  NEEDS("fish");
  EXPECT_EQ(Syntax("fish"), "");
  EXPECT_EQ(Fish("water pl"), "plants\tName plants\n");
  EXPECT_EQ(Fish("water plants --co"), "--colour\tColour of the bloom\n");
  EXPECT_EQ(Fish("water plants --colour "),
            "blue\tColour of the bloom\nred\tColour of the bloom\n");
  EXPECT_EQ(Fish("water plants M"), "Moss\n");
  EXPECT_EQ(Fish("water log ta"), "tap\n");
  EXPECT_EQ(Fish("water --can ta"), "tap\n");
  EXPECT_EQ(Fish("water --ca"), "--can\tUse this can: [big] 'one' \\ only\n");
}

TEST_F(OtherShells, FishProposesListsAndWhatTheProgramLists) {
  NEEDS("fish");
  EXPECT_EQ(Fish("water pot --parts leaf,r"), "leaf,root\tWhat to see\n");
  EXPECT_EQ(Fish("water pot --only s"), "size=\tSome\n");
  EXPECT_EQ(Fish("water pot 01"), "01:00.0\n01:00.1\n");
  EXPECT_EQ(Fish("water log --tone "), "high\tSound\n");
  EXPECT_EQ(Fish("water pot --tone "), "high\tSound\nlow\tSound\n");
}

TEST_F(OtherShells, ZshAcceptsItsFile) {
  NEEDS("zsh");
  EXPECT_EQ(Syntax("zsh"), "");
}

TEST_F(OtherShells, AcceptTheInstalledFiles) {
  NEEDS("fish");
  NEEDS("zsh");
  EXPECT_EQ(RunShell("fish -n " WRITTEN_DIRECTORY "/pciinfo.fish").out, "");
  EXPECT_EQ(RunShell("zsh -n " WRITTEN_DIRECTORY "/_pciinfo").out, "");
}

TEST_F(OtherShells, FishProposesTheProgramsOwnCommands) {
  NEEDS("fish");
  EXPECT_EQ(RunShell("fish --no-config -c '. " WRITTEN_DIRECTORY
                     "/pciinfo.fish; complete -C \"pciinfo inst\"'")
                .out,
            "instances\tPrint the instances of CIM classes\n");
}

TEST_F(Completion, BashProposesTheProgramsOwnCommands) {
  EXPECT_EQ(RunShell("bash -n " WRITTEN_DIRECTORY "/pciinfo").out, "");
  EXPECT_EQ(RunShell("bash --norc -c '. " WRITTEN_DIRECTORY
                     "/pciinfo; COMP_WORDS=(pciinfo instances QZMSG_PCIB); COMP_CWORD=2; "
                     "_pciinfo; echo \"${COMPREPLY[@]}\"'")
                .out,
            "QZMSG_PCIBridge\n");
}

TEST_F(Completion, BashProposesTheKeysOfTheCommandsOwnFilter) {
  const auto proposed = [](const std::string& command) {
    return RunShell("bash --norc -c '. " WRITTEN_DIRECTORY "/pciinfo; COMP_WORDS=(pciinfo " +
                    command + " --filter s); COMP_CWORD=3; _pciinfo; echo \"${COMPREPLY[@]}\"'")
        .out;
  };
  EXPECT_EQ(proposed("fleet"), "subsystem= slot= serial= state= severity=\n");
  EXPECT_EQ(proposed("devices"), "subsystem= slot=\n");
}

}  // namespace
}  // namespace pciinfo
