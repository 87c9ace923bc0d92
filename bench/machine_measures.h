#pragma once

#include <string>

#include "bench/results.h"

namespace bench {

/// The programs, by their absolute paths.
struct Programs {
  std::string pciinfo;
  std::string lspciWrapper;  ///< bench_lspci
  std::string collector;     ///< bench_collect
};

/// What to measure and how often.
struct Plan {
  unsigned functions = 0;
  unsigned rounds = 0;         ///< of the device list
  unsigned listingRounds = 0;  ///< of the full listings; 0: not measured
  bool withSlowTools = false;  ///< whether to run lshw and hwinfo, once
  bool withInstructions = false;
};

/// Creates the machine, moves this process into it, and measures the tools and the program there,
/// one after the other in every round. Call it once in a process, which must have one thread.
/// Throws std::exception.
Measures MeasureMachine(const Plan& plan, const Programs& programs);

}  // namespace bench
