// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "topology/machine.h"

namespace topology {

/// Gives a number below `end`, which is not 0.
using Choice = std::function<unsigned(unsigned end)>;

/// A machine with few buses, so that records, kernel slots, onboard devices and ports meet. Bridges
/// may have any bus numbers and types, and records any address.
Machine MakeMachineBy(const Choice& choose);

/// The same by a generator of random numbers with that seed.
Machine MakeRandomMachine(unsigned seed);

}  // namespace topology
