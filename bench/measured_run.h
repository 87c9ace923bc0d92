#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// A program with its arguments, the program's file or name first.
using Command = std::vector<std::string>;

/// What one run of a program took, with all that it started and waited for.
struct Taken {
  double wallSeconds = 0;
  double cpuSeconds = 0;  ///< user and system time
  /// CPU time of the `lspci` that the program ran; 0 unless it was counted (see LspciCounter).
  double lspciSeconds = 0;
  std::uint64_t peakBytes = 0;  ///< resident memory of the largest process
  std::uint64_t outputBytes = 0;
  int status = 0;  ///< as waitpid reports it
};

/// Runs the program with an empty standard input; its output is read, counted and dropped, its
/// messages are dropped. Throws std::runtime_error when it cannot be started.
Taken Measure(const Command& command);

/// As long as it lives, every `lspci` of this mount namespace notes the CPU time that it takes.
/// That costs a few milliseconds a run, so wall times are to be taken without it.
class LspciCounter final {
 public:
  /// `wrapper` is bench_lspci. Needs a mount namespace of its own. Throws std::runtime_error.
  explicit LspciCounter(const std::string& wrapper);
  LspciCounter(const LspciCounter&) = delete;
  LspciCounter& operator=(const LspciCounter&) = delete;
  ~LspciCounter();

  /// Measures with lspciSeconds.
  static Taken Measure(const Command& command);
};

}  // namespace bench
