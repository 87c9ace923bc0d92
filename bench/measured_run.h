// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// A program with its arguments, the program's file or name first.
using Command = std::vector<std::string>;

/// Resources that one run of a program took, including the processes that it started and waited
/// for.
struct Taken {
  double wallSeconds = 0;
  double cpuSeconds = 0;  ///< user and system time
  /// CPU time of the `lspci` that the program ran; 0 unless it was counted (see LspciCounter).
  double lspciSeconds = 0;
  std::uint64_t peakBytes = 0;  ///< resident memory of the largest process
  std::uint64_t outputBytes = 0;
  int status = 0;  ///< as waitpid reports it
};

/// Runs the program with an empty standard input. Counts and drops its output; drops its messages.
/// Throws std::runtime_error when it cannot be started.
Taken Measure(const Command& command);

/// During its lifetime, every `lspci` in this mount namespace records the CPU time that it takes.
/// That takes a few milliseconds per run, so measure wall times without it.
class LspciCounter final {
 public:
  /// `wrapper` is bench_lspci. Needs a mount namespace of its own. Throws std::runtime_error.
  explicit LspciCounter(const std::string& wrapper);
  LspciCounter(const LspciCounter&) = delete;
  LspciCounter& operator=(const LspciCounter&) = delete;
  ~LspciCounter();

  /// Like Measure, but sets lspciSeconds.
  static Taken Measure(const Command& command);
};

}  // namespace bench
