// SPDX-License-Identifier: Apache-2.0

// The program survives plug-ins that crash, hang, flood or exit, and leaves no processes or files
// behind.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace {

using std::chrono::steady_clock;
using testing::AllOf;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// The classes in the output of `instances --format jsonl`, each once.
std::vector<std::string> CollectedClasses(const std::string& out) {
  std::vector<std::string> classes;
  for (const std::string& line : LinesOf(out)) {
    const std::size_t start = line.find("QZMSG_");
    const std::string name = line.substr(start, line.find('"', start) - start);
    if (classes.empty() || classes.back() != name) classes.push_back(name);
  }
  return classes;
}

// The misbehaving class is the third; the associations join instances of the other classes.
const auto kAllButSlots = ElementsAre("QZMSG_PCIDevice", "QZMSG_PCIBridge", "QZMSG_SystemBoard",
                                      "QZMSG_OnBoardDevice", "QZMSG_PCIRawData");
const auto kAll =
    ElementsAre("QZMSG_PCIDevice", "QZMSG_PCIBridge", "QZMSG_SystemSlot", "QZMSG_SystemBoard",
                "QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice", "QZMSG_PCIRawData");

class Survival : public testing::Test {
 protected:
  /// Collects all classes of a misbehaving plug-in; every log record goes to Log().
  RunResult Run(const std::string& harm, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"--format", "jsonl", "--log-file", LogFile()});
    return RunHostile(harm, InventoryWords(options));
  }

  std::string LogFile() const { return directory_ / "log"; }

  bool Logs(const std::string& text) const {
    return directory_.Read("log").find(text) != std::string::npos;
  }

  /// Returns how often the plug-in was asked for a class.
  long CountQueries(const std::string& className) const {
    const std::vector<std::string> lines = LinesOf(directory_.Read("log"));
    return std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
      return line.ends_with("GetData " + className);
    });
  }

  /// Returns the text after `beginning` in the log.
  std::string Logged(const std::string& beginning) const {
    for (const std::string& line : LinesOf(directory_.Read("log"))) {
      const std::size_t start = line.find(beginning);
      if (start != std::string::npos) return line.substr(start + beginning.size());
    }
    return "";
  }

  /// Whether the process that the plug-in started still exists.
  bool IsProcessThere() const {
    const std::string number = Logged("left behind: ");
    EXPECT_NE(number, "");
    return kill(std::stoi(number), 0) == 0;
  }

  /// Returns the number of processes with the log file on their command line, which all processes
  /// of the program have.
  int CountProcesses() const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
      std::ostringstream words;
      words << std::ifstream(entry.path() / "cmdline")
                   .rdbuf();  // fails for a process that has just ended
      if (words.str().find(LogFile()) != std::string::npos) ++count;
    }
    return count;
  }

  bool BecomesGone() const {
    for (int look = 0; look < 200 && CountProcesses() > 0; ++look) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return CountProcesses() == 0;
  }

  vtq::TemporaryDirectory directory_;
};

TEST_F(Survival, ACrashLosesOnlyItsClass) {
  const RunResult result = Run("Abort QZMSG_SystemSlot");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(CollectedClasses(result.out), kAllButSlots);
  EXPECT_THAT(LinesOf(result.err),
              ElementsAre("pciinfo: QZMSG_SystemSlot: the plug-in died by signal 6 (Aborted)"));
}

TEST_F(Survival, EverythingIsCollectedAgainWithoutTheClassThatDied) {
  Run("Abort QZMSG_SystemSlot");
  EXPECT_EQ(CountQueries("QZMSG_PCIDevice"), 2);
  EXPECT_EQ(CountQueries("QZMSG_SystemSlot"), 1);
  EXPECT_EQ(CountQueries("QZMSG_PCIRawData"), 1);
}

TEST_F(Survival, EachClassThatDiesCostsOneMoreAttempt) {
  const RunResult result = Run("Abort QZMSG_SystemSlot QZMSG_OnBoardDevice");
  EXPECT_EQ(CountQueries("QZMSG_PCIDevice"), 3);
  EXPECT_EQ(CountQueries("QZMSG_SystemSlot"), 1);
  EXPECT_EQ(CountQueries("QZMSG_SystemBoard"), 2);
  EXPECT_EQ(CountQueries("QZMSG_OnBoardDevice"), 1);
  EXPECT_THAT(CollectedClasses(result.out), ElementsAre("QZMSG_PCIDevice", "QZMSG_PCIBridge",
                                                        "QZMSG_SystemBoard", "QZMSG_PCIRawData"));
  EXPECT_THAT(LinesOf(result.err),
              ElementsAre("pciinfo: QZMSG_SystemSlot: the plug-in died by signal 6 (Aborted)",
                          "pciinfo: QZMSG_OnBoardDevice: the plug-in died by signal 6 (Aborted)"));
}

TEST_F(Survival, ATimeoutInTheLastClassLosesOnlyThatClass) {
  const RunResult result = Run("Hang QZMSG_PCIRawData", {"--timeout", "2"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(CollectedClasses(result.out),
              ElementsAre("QZMSG_PCIDevice", "QZMSG_PCIBridge", "QZMSG_SystemSlot",
                          "QZMSG_SystemBoard", "QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"));
  EXPECT_THAT(LinesOf(result.err),
              ElementsAre(StartsWith("pciinfo: QZMSG_PCIRawData: the plug-in was stopped after ")));
}

TEST_F(Survival, APluginThatExitsLosesOnlyItsClass) {
  const RunResult result = Run("Exit QZMSG_SystemSlot");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(CollectedClasses(result.out), kAllButSlots);
  EXPECT_THAT(LinesOf(result.err), ElementsAre("pciinfo: QZMSG_SystemSlot: the plug-in ended the "
                                               "program, with exit status 0"));
}

TEST_F(Survival, AClassThatHangsIsStopped) {
  const auto start = steady_clock::now();
  const RunResult result = Run("Hang QZMSG_SystemSlot", {"--timeout", "4"});
  EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(60));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(CollectedClasses(result.out), kAllButSlots);
  EXPECT_THAT(
      LinesOf(result.err),
      ElementsAre(AllOf(StartsWith("pciinfo: QZMSG_SystemSlot: the plug-in was stopped after "),
                        HasSubstr(" seconds (--timeout bounds the whole run to 4)"))));
}

TEST_F(Survival, APluginThatCrashesWhileLoadingIsAnError) {
  const RunResult died = Run("Abort Init");
  EXPECT_EQ(died.status, 1);
  EXPECT_EQ(died.out, "");
  EXPECT_EQ(died.err, "pciinfo: loading the plug-ins: the process died by signal 6 (Aborted)\n");
  const RunResult hung = Run("Hang Init", {"--timeout", "1"});
  EXPECT_EQ(hung.status, 1);
  EXPECT_EQ(hung.err,
            "pciinfo: loading the plug-ins: the process was stopped after 0.5 seconds (--timeout "
            "bounds the whole run to 1)\n");
}

TEST_F(Survival, ACrashAtTheEndIsReportedAfterTheOutput) {
  const RunResult died = Run("Abort DeInit");
  EXPECT_EQ(died.status, 1);
  EXPECT_THAT(CollectedClasses(died.out), kAll);
  EXPECT_EQ(died.err, "pciinfo: ending the plug-ins: the process died by signal 6 (Aborted)\n");
  const RunResult exited = Run("Exit DeInit");
  EXPECT_EQ(exited.status, 1);
  EXPECT_THAT(CollectedClasses(exited.out), kAll);
  EXPECT_EQ(exited.err,
            "pciinfo: ending the plug-ins: the process ended the program, with exit status 0\n");
}

TEST_F(Survival, APluginThatHangsAtItsEndIsStopped) {
  const RunResult result = Run("Hang DeInit");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(CollectedClasses(result.out), kAll);
  EXPECT_EQ(result.err, "pciinfo: ending the plug-ins: the process was stopped after 10 seconds\n");
}

// Sanitizers have their own allocators and limits.
#ifndef PCIINFO_SANITIZED
TEST_F(Survival, ExhaustedMemoryLosesOnlyItsClass) {
  const RunResult result = Run("Flood QZMSG_SystemSlot", {"--memory-limit", "300"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(CollectedClasses(result.out), kAllButSlots);
  EXPECT_THAT(LinesOf(result.err),
              ElementsAre("pciinfo: QZMSG_SystemSlot: the plug-in left no memory to go on with "
                          "(--memory-limit)"));
}

TEST_F(Survival, SilentlyExhaustedMemoryIsReported) {
  const RunResult result = Run("Hoard QZMSG_SystemSlot", {"--memory-limit", "300"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(CollectedClasses(result.out), kAllButSlots);
  EXPECT_THAT(result.err, HasSubstr("pciinfo: QZMSG_SystemSlot: the plug-in "));
}
#endif

TEST_F(Survival, AProcessThatAPluginLeavesBehindIsEnded) {
  const RunResult result = Run("LeaveProcess QZMSG_SystemSlot");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(CollectedClasses(result.out), kAll);
  EXPECT_FALSE(IsProcessThere());
}

TEST_F(Survival, AProcessThatADyingPluginLeavesBehindIsEnded) {
  const RunResult result = Run("LeaveProcessAndAbort QZMSG_SystemSlot");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(CollectedClasses(result.out), kAllButSlots);
  EXPECT_FALSE(IsProcessThere());
}

TEST_F(Survival, APluginThatClosesAllFilesLosesOnlyItsClass) {
  const RunResult result = Run("CloseFiles QZMSG_SystemSlot");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(CollectedClasses(result.out), kAllButSlots);
  EXPECT_THAT(result.err, StartsWith("pciinfo: QZMSG_SystemSlot: the plug-in "));
}

TEST_F(Survival, FilesInTheWorkingDirectoryAreRemoved) {
  const RunResult result = Run("WriteFile QZMSG_SystemSlot");
  EXPECT_EQ(result.status, 0) << result.err;
  const std::string directory = Logged("wrote into: ");
  EXPECT_THAT(directory, AnyOf(StartsWith("/dev/shm/pciinfo-"), StartsWith("/tmp/pciinfo-")));
  EXPECT_FALSE(std::filesystem::exists(directory));
}

TEST_F(Survival, OutputOfAPluginAppearsOnce) {
  const RunResult result = Run("PrintToStdout QZMSG_PCIDevice");
  const std::size_t first = result.out.find("unasked");
  ASSERT_NE(first, std::string::npos);
  EXPECT_EQ(result.out.find("unasked", first + 1), std::string::npos);
}

class SignalledSurvival : public Survival, public testing::WithParamInterface<int> {
 protected:
  pid_t StartHanging() const {
    const pid_t program = fork();
    if (program != 0) return program;
    setenv("HOSTILE", "Hang QZMSG_SystemSlot", 1);
    _exit(Execute({PCIINFO_PROGRAM, "instances", "--log-file", LogFile(), "--only-plugin",
                   FakePluginFile("hostile")}));
  }

  void WaitUntilItHangs() const {
    while (!Logs("GetData QZMSG_SystemSlot")) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }
};
INSTANTIATE_TEST_SUITE_P(Signals, SignalledSurvival, testing::Values(SIGHUP, SIGINT, SIGTERM));

TEST_P(SignalledSurvival, ASignalEndsTheProgramAndItsProcesses) {
  const pid_t program = StartHanging();
  WaitUntilItHangs();
  EXPECT_GT(CountProcesses(), 1);
  kill(program, GetParam());
  int status = 0;
  waitpid(program, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), GetParam());
  EXPECT_EQ(CountProcesses(), 0);
}

TEST_F(SignalledSurvival, NothingGoesOnWhenTheProgramIsKilled) {
  const pid_t program = StartHanging();
  WaitUntilItHangs();
  kill(program, SIGKILL);
  waitpid(program, nullptr, 0);
  EXPECT_TRUE(BecomesGone());
}

/// The same where the program has a child that it did not start: a shell that had started another
/// program became this one.
class InheritedChildren : public Survival {
 protected:
  /// Runs `pciinfo slots` with a misbehaving plug-in after `before`, a shell command that leaves a
  /// child, and then reports the exit status. What `after` prints follows.
  RunResult RunAfter(const std::string& before, const std::string& harm,
                     const std::string& after) const {
    return RunShell("HOSTILE='" + harm + "' bash -c '" + before +
                    " exec $PCIINFO slots --log-file " + LogFile() +
                    " --only-plugin ${PLUGINS}hostile.pi.so" + "' >/dev/null 2>&1; " + "echo $?; " +
                    after);
  }
};

TEST_F(InheritedChildren, AreLeftAlone) {
  const std::string note = directory_ / "note";
  const RunResult result = RunAfter("sleep 60 & echo $! >" + note + ";", "Abort VTQ_PCISlot",
                                    "kill $(cat " + note + ") && echo it slept");
  EXPECT_EQ(result.out, "1\nit slept\n");
}

TEST_F(InheritedChildren, MayHaveChildrenOfTheirOwn) {
  const std::string note = directory_ / "note";
  const RunResult result =
      RunAfter("(setsid sleep 60 & echo $! >" + note + "; sleep 0.01) & ",
               "LeaveProcessAndAbort VTQ_PCISlot", "kill $(cat " + note + ") && echo it slept");
  EXPECT_EQ(result.out, "1\nit slept\n");
}

TEST_F(InheritedChildren, DoNotKeepTheProgramFromEndingItsOwnProcesses) {
  RunAfter("sleep 1 &", "LeaveProcessAndAbort VTQ_PCISlot", "");
  EXPECT_FALSE(IsProcessThere());
}

TEST_F(InheritedChildren, MayReadTheOutput) {
  const std::string file = directory_ / "kept";
  RunShell("bash -c 'exec $PCIINFO slots --only-plugin ${PLUGINS}fixed.pi.so > >(sleep 0.3; cat >" +
           file + ")'; sleep 0.6; :");
  EXPECT_THAT(directory_.Read("kept"), HasSubstr("\n"));
}

TEST_F(InheritedChildren, ASignalEndsTheProgramAndItsProcesses) {
  for (const std::string signal : {"TERM", "KILL"}) {
    const std::string note = directory_ / "note";
    const RunResult result =
        RunShell("export HOSTILE='Hang VTQ_PCISlot'; bash -c 'sleep 60 & echo $! >" + note +
                 "; exec $PCIINFO slots --log-file " + LogFile() +
                 " --only-plugin ${PLUGINS}hostile.pi.so' & until grep -qs PCISlot " + LogFile() +
                 "; do sleep 0.01; done; kill -" + signal + " $!; wait $!; echo $?; kill $(cat " +
                 note + ") && echo it slept");
    EXPECT_EQ(result.out, (signal == "TERM" ? "143" : "137") + std::string("\nit slept\n"));
    EXPECT_TRUE(BecomesGone()) << signal;
    std::filesystem::remove(LogFile());
  }
}

}  // namespace
