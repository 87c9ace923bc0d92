// SPDX-License-Identifier: Apache-2.0

// Each test in a child process of its own, which has no children unless the test starts some.

#include "host/process/childless_run.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <stdexcept>

#include "host/process/process_tree.h"
#include "tests/fakes/run_process.h"

namespace pciinfo {
namespace {

/// A child that was there before.
pid_t StartStranger() {
  return StartProcess([] {
    while (true) pause();
  });
}

RunResult InChild(const std::function<bool()>& holds) {
  return RunInChild([&] { return holds() ? 0 : 1; });
}

TEST(ChildlessRun, IsDoneInThisProcessWhereThereAreNoChildren) {
  EXPECT_EQ(InChild([] {
              const HeldSignals signals;
              pid_t process = 0;
              const ExitStatus status = RunChildless(signals, [&process] {
                process = getpid();
                return kPipeClosed;
              });
              return process == getpid() && status == kPipeClosed;
            }).status,
            0);
}

TEST(ChildlessRun, IsDoneInAProcessWithoutChildrenElse) {
  EXPECT_EQ(InChild([] {
              const HeldSignals signals;
              const pid_t stranger = StartStranger();
              const pid_t process = getpid();
              const ExitStatus status = RunChildless(signals, [process] {
                const bool isApart = getppid() == process && getpgrp() == getpgid(process);
                return isApart && !HasChildren() ? kPipeClosed : kFailed;
              });
              const bool isLeftAlone = waitpid(stranger, nullptr, WNOHANG) == 0;
              return status == kPipeClosed && isLeftAlone;
            }).status,
            0);
}

TEST(ChildlessRun, AnErrorThereIsAMessageAndAStatus) {
  const RunResult result = InChild([] {
    const HeldSignals signals;
    StartStranger();
    return RunChildless(signals, []() -> ExitStatus { throw std::runtime_error("no luck"); }) ==
           kFailed;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "pciinfo: no luck\n");
}

TEST(ChildlessRun, ASignalIsPassedOnAndEndsBoth) {
  EXPECT_EQ(InChild([] {
              const HeldSignals signals;
              StartStranger();
              const pid_t process = getpid();
              try {
                RunChildless(signals, [&signals, process]() -> ExitStatus {
                  kill(process, SIGUSR1);
                  int signal = 0;
                  while (signal == 0) signal = signals.Take();
                  throw EndedBySignal{signal};
                });
              } catch (const EndedBySignal& end) {
                return end.signal == SIGUSR1;
              }
              return false;
            }).status,
            0);
}

}  // namespace
}  // namespace pciinfo
