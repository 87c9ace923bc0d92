// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

/// Runs of the program, each of which is disturbed by a signal at a random moment. On a terminal
/// the signal strikes the pager as well in half of the runs.
struct SignalStorm {
  struct Run {
    std::vector<std::string> arguments;
    bool isOnTerminal =
        false;  ///< with the pager that the program chooses; "q" is typed in the end
  };

  std::vector<Run> runs;
  std::vector<int> signals;
  /// Whether a signal may also strike the worker and the tool that it runs; else the program only.
  bool strikesAll = false;
  int count = 0;          ///< of runs and signals, in turn and at random
  unsigned seed = 1;      ///< of the random numbers
  std::string directory;  ///< empty; where the runs write captures
};

/// Carries it out in this process, which must have no children. Returns a line for each thing that
/// was left: a process that went on, a file in `directory` that is no capture, a scratch directory
/// (after SIGKILL: one that is not empty), a terminal that is not as it was. Throws
/// std::runtime_error.
std::vector<std::string> LeftBehind(const SignalStorm& storm);

/// Gives this process a /dev/shm of its own, where the program makes its scratch directories. False
/// where this user may not do that.
bool HaveOwnScratchPlace();
