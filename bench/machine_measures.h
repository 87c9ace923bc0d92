// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "bench/results.h"

namespace bench {

/// The programs, by their absolute paths.
struct Programs {
  std::string pciinfo;
  std::string lspciWrapper;  ///< bench_lspci
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

/// Makes the machine, moves this process into it, and runs the program and `other`, another build
/// of it, in turn, `rounds` times each: "program wall", "other wall", and the ratio of each round
/// as "other/program wall". To be called once in a process, which must have one thread. Throws
/// std::exception.
Measures MeasurePair(unsigned functions, unsigned rounds, const std::string& program,
                     const std::string& other);

}  // namespace bench
