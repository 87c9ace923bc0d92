// SPDX-License-Identifier: Apache-2.0

// Each test in a child process of its own: signals end it where something is wrong.

#include "host/process/signals.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "tests/fakes/run_process.h"

namespace pciinfo {
namespace {

constexpr int kEndingSignals[] = {SIGHUP,  SIGINT,  SIGQUIT,   SIGTERM, SIGUSR1, SIGUSR2,
                                  SIGALRM, SIGXCPU, SIGVTALRM, SIGPROF, SIGIO,   SIGPWR};

/// The status of a child that returns whether `holds` is true: 0 if so.
int StatusOfChild(const std::function<bool()>& holds) {
  return RunInChild([&] {
           for (const int signal : kEndingSignals) std::signal(signal, SIG_DFL);
           return holds() ? 0 : 1;
         })
      .status;
}

bool IsReadable(const HeldSignals& signals) {
  pollfd watched{signals.GetDescriptor(), POLLIN, 0};
  return poll(&watched, 1, 0) == 1;
}

TEST(HeldSignals, GivesEachSignalThatWouldEndTheProcess) {
  for (const int signal : kEndingSignals) {
    EXPECT_EQ(StatusOfChild([signal] {
                const HeldSignals signals;
                if (IsReadable(signals) || signals.Take() != 0) return false;
                raise(signal);
                return IsReadable(signals) && signals.Take() == signal && signals.Take() == 0;
              }),
              0)
        << signal;
  }
}

TEST(HeldSignals, LeavesAnIgnoredSignalIgnored) {
  EXPECT_EQ(StatusOfChild([] {
              std::signal(SIGHUP, SIG_IGN);
              const HeldSignals signals;
              raise(SIGHUP);
              return signals.Take() == 0;
            }),
            0);
}

TEST(HeldSignals, GivesTheEndOfAChildAlsoWhereThatIsIgnored) {
  EXPECT_EQ(StatusOfChild([] {
              std::signal(SIGCHLD, SIG_IGN);
              const HeldSignals signals;
              const pid_t child = fork();
              if (child == 0) _exit(7);
              pollfd watched{signals.GetDescriptor(), POLLIN, 0};
              poll(&watched, 1, -1);
              int status = 0;
              return signals.Take() == SIGCHLD && waitpid(child, &status, 0) == child &&
                     WEXITSTATUS(status) == 7;
            }),
            0);
}

TEST(HeldSignals, ASignalThatWasNotTakenEndsTheProcessWhenItIsReleased) {
  EXPECT_EQ(StatusOfChild([] {
              HeldSignals signals;
              raise(SIGTERM);
              signals.Release();
              return true;
            }),
            128 + SIGTERM);
}

TEST(HeldSignals, WhatWasBlockedBeforeStaysBlockedWhenItIsReleased) {
  EXPECT_EQ(StatusOfChild([] {
              sigset_t blocked;
              sigemptyset(&blocked);
              sigaddset(&blocked, SIGTERM);
              sigprocmask(SIG_BLOCK, &blocked, nullptr);
              { const HeldSignals signals; }
              raise(SIGTERM);
              return true;
            }),
            0);
}

TEST(EndBySignal, EndsTheProcessThoughTheSignalIsHeldOrHandled) {
  EXPECT_EQ(StatusOfChild([] {
              const HeldSignals signals;
              EndBySignal(SIGINT);
              return true;
            }),
            128 + SIGINT);
  EXPECT_EQ(StatusOfChild([] {
              std::signal(SIGHUP, [](int) {});
              EndBySignal(SIGHUP);
              return true;
            }),
            128 + SIGHUP);
}

}  // namespace
}  // namespace pciinfo
