// SPDX-License-Identifier: Apache-2.0

// Signals at random moments leave nothing behind. PCIINFO_SIGNALS sets how many there are.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>

#include "tests/fakes/fewer_if_sanitized.h"
#include "tests/host/run_program.h"
#include "tests/host/signal_storm.h"
#include "tests/runtime/temporary_directory.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kNoNamespaces = 99;

class Signals : public testing::Test {
 protected:
  static SignalStorm::Run Run(std::vector<std::string> arguments, bool isOnTerminal = false) {
    arguments.insert(arguments.end(), {"--only-plugin", FakePluginFile("fixed")});
    return {arguments, isOnTerminal};
  }

  /// Makes a capture of this machine for runs that read one.
  std::string Captured() const {
    const std::string file = machine_ / "box.tar.gz";
    RunPciinfo({"capture", file});
    return file;
  }

  void CarryOut(SignalStorm storm) const {
    const char* const count = std::getenv("PCIINFO_SIGNALS");
    storm.count = count == nullptr ? static_cast<int>(FewerIfSanitized(100)) : std::atoi(count);
    storm.directory = directory_.GetPath();
    const RunResult result = RunInChild([&storm] {
      if (!HaveOwnScratchPlace()) return kNoNamespaces;
      const std::vector<std::string> left = LeftBehind(storm);
      for (const std::string& line : left) std::fprintf(stderr, "%s\n", line.c_str());
      std::fflush(stderr);
      return 0;
    });
    if (result.status == kNoNamespaces) GTEST_SKIP() << "this user may not make mount namespaces";
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(LinesOf(result.err), IsEmpty());
  }

  vtq::TemporaryDirectory machine_;
  vtq::TemporaryDirectory directory_;
};

TEST_F(Signals, ThatEndTheProgramLeaveNothing) {
  const std::string capture = Captured();
  SignalStorm storm;
  storm.signals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGUSR1, SIGALRM, SIGXCPU};
  storm.runs = {Run({"instances", "--format", "json"}),
                Run({"devices"}, true),
                {{"devices"}},
                {{"capture", directory_ / "box.tar.zst"}},
                {{"capture", directory_ / "box"}},
                {{"slots", "--root", capture}},
                {{"diff", capture, "live"}}};
  CarryOut(storm);
}

TEST_F(Signals, ThatKillAnyProcessLeaveNoOtherProcess) {
  const std::string capture = Captured();
  SignalStorm storm;
  storm.signals = {SIGKILL};
  storm.strikesAll = true;
  storm.runs = {Run({"devices"}, true),
                {{"devices"}},
                {{"instances", "QZMSG_PCIRawData"}},
                {{"slots", "--root", capture}},
                {{"diff", capture, "live"}}};
  CarryOut(storm);
}

/// Runs the program where no file may be longer than 100 bytes.
RunResult RunWithShortFiles(const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {PCIINFO_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return RunInChild([&words] {
    constexpr rlim_t kMost = 100;
    const rlimit limit{kMost, RLIM_INFINITY};
    return setrlimit(RLIMIT_FSIZE, &limit) == 0 ? Execute(words) : kNoNamespaces;
  });
}

TEST_F(Signals, ForAFileThatGetsTooLongAreErrorsOfTheOutput) {
  const RunResult result =
      RunWithShortFiles({"instances", "--only-plugin", FakePluginFile("fixed")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("cannot write the output: File too large"));
}

TEST_F(Signals, ForACaptureThatGetsTooLongAreErrorsThatLeaveNothing) {
  for (const char* name : {"box.tar", "box.tar.zst", "box"}) {
    const RunResult result = RunWithShortFiles({"capture", directory_ / name});
    EXPECT_EQ(result.status, 1) << name;
    EXPECT_THAT(result.err, HasSubstr("File too large")) << name;
    EXPECT_THAT(directory_.Names(), IsEmpty()) << name;
  }
}

}  // namespace
